// sample-content LEVEL PROGRAMS TEMPLATES FOLDER: writes into FOLDER everything of a sample machine that is
// not made by the package tools themselves. LEVEL is 700 or 710, PROGRAMS the folder of the cross-built
// Windows programs, TEMPLATES that of the console's templates.

#include <cstdio>
#include <string>

#include "sample/package/machine_writer.h"
#include "sample/package/package_writer.h"

int main(int argc, char** argv) {
  const std::string level = argc == 5 ? argv[1] : "";
  if (level != "700" && level != "710") {
    std::fprintf(stderr, "usage: sample-content 700|710 PROGRAMS TEMPLATES FOLDER\n");
    return 2;
  }
  const std::string programs = argv[2];
  kw::sample::Output output(argv[4]);
  const kw::sample::Description product =
      kw::sample::Describe(level == "700" ? kw::sample::Level::k700 : kw::sample::Level::k710);
  kw::sample::WriteProductSources(product, programs, output);
  kw::sample::WriteSideFiles(product, programs, output);
  kw::sample::WriteCatalogues(product, argv[3], output);
  kw::sample::WriteMachine(product, programs, output);
  kw::sample::WriteBeaconrySources(output);
  kw::sample::WritePayloads(programs, output);
  if (!output.status().ok()) {
    std::fprintf(stderr, "sample-content: %s\n", output.status().message().c_str());
    return 1;
  }
  return 0;
}
