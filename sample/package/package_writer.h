#ifndef KITWRIGHT_SAMPLE_PACKAGE_PACKAGE_WRITER_H_
#define KITWRIGHT_SAMPLE_PACKAGE_PACKAGE_WRITER_H_

#include <string>

#include "sample/package/description.h"
#include "sample/package/output.h"

namespace kw::sample {

/// Writes a file of the product to `path`; `programs` is the host folder of the cross-built programs.
void WriteProductFile(const Description& product, const PackedFile& file, const std::string& programs,
                      const std::string& path, Output& output);

/// Writes what the package tools make the installer package from, below "product/": `product.wxs` for wixl,
/// `Feature.idt`, `Directory.idt` and `Registry.idt` for msibuild, and `files/` with one file for each row of
/// the table File, named by its key.
void WriteProductSources(const Description& product, const std::string& programs, Output& output);

/// Writes the sources of the alert server's package, below "beaconry/": `beaconry.wxs` and `files/`.
void WriteBeaconrySources(Output& output);

/// Writes the catalogues that come with the packages, `side/PkgCatalog.z` and `beaconry/side/PkgCatalog.z`,
/// from the templates in the host folder `templates`.
void WriteCatalogues(const Description& product, const std::string& templates, Output& output);

/// Writes the files that lie beside the database of a package of this level, below "side/".
void WriteSideFiles(const Description& product, const std::string& programs, Output& output);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_PACKAGE_PACKAGE_WRITER_H_
