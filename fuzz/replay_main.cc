// Runs a fuzz target over kept inputs, every file in the folders that are named, and over changed ones made
// of them: a short search that every build can make. It is the same each time.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

constexpr int kChangedInputs = 3000;
constexpr size_t kLongestChange = 64;

void Run(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

class Numbers {
 public:
  // A number below `end`, which is not 0.
  size_t Below(size_t end) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<size_t>(state_ >> 33) % end;
  }

 private:
  uint64_t state_ = 1;
};

// Changes `input` at one place; `other` is a second input to take a piece from.
void Change(std::string& input, const std::string& other, Numbers& numbers) {
  static constexpr char kTelling[] = {
      0, 1, 2, 4, 8, 16, 32, 64, 127, static_cast<char>(128), static_cast<char>(255)};
  const size_t at = numbers.Below(input.size() + 1);
  const size_t length = std::min(numbers.Below(kLongestChange) + 1, input.size() - at);
  switch (numbers.Below(5)) {
    case 0:
      if (at < input.size()) input[at] = static_cast<char>(input[at] ^ (1 << numbers.Below(8)));
      break;
    case 1:
      if (at < input.size()) input[at] = kTelling[numbers.Below(sizeof kTelling)];
      break;
    case 2:
      input.erase(at, length);
      break;
    case 3:
      input.insert(at, input.substr(at, length));
      break;
    default:
      if (!other.empty()) input.replace(at, length, other.substr(numbers.Below(other.size()), length));
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> inputs;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
  }
  // Folders come in any order.
  std::sort(inputs.begin(), inputs.end());
  for (const std::string& input : inputs) Run(input);
  if (inputs.empty()) return EXIT_FAILURE;
  Numbers numbers;
  for (int i = 0; i < kChangedInputs; ++i) {
    std::string input = inputs[numbers.Below(inputs.size())];
    for (size_t changes = numbers.Below(4) + 1; changes > 0; --changes) {
      Change(input, inputs[numbers.Below(inputs.size())], numbers);
    }
    Run(input);
  }
  std::printf("%zu inputs, and %d made of them\n", inputs.size(), kChangedInputs);
  return EXIT_SUCCESS;
}
