#ifndef KITWRIGHT_MSI_SUMMARY_INFO_H_
#define KITWRIGHT_MSI_SUMMARY_INFO_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::msi {

class Core;

/// The summary information of a database: properties by number. 1 code page; 2 title, 3 subject, 4 author, 5
/// keywords, 6 comments, 7 template, 8 last author, 9 revision, 18 application (text); 11 last printed, 12
/// created, 13 last saved (times); 14 page count, 15 word count, 16 character count, 19 security (integers).
class SummaryInfo {
 public:
  /// Reads the information of a database; an empty one when there is none. `updates` is the number of changes
  /// that may be made; more than 0 needs a writable database.
  static Result<std::unique_ptr<SummaryInfo>> Open(std::shared_ptr<Core> core, int updates);

  /// Number of properties.
  int PropertyCount() const { return static_cast<int>(properties_.size()); }
  std::vector<int> PropertyIds() const;
  bool Has(int id) const { return properties_.count(id) != 0; }
  /// A property as an integer; 0 when absent or of another kind.
  int32_t IntegerProperty(int id) const;
  /// A property as text; "" when absent or of another kind.
  std::string TextProperty(int id) const;
  /// A time, in units of 100 nanoseconds since the beginning of 1601 (UTC); 0 when absent or of another kind.
  uint64_t TimeProperty(int id) const;
  /// Changes; fail with kErrorFunctionFailed when the allowed number is used up, and on a text that the code
  /// page does not have.
  Status SetInteger(int id, int32_t value);
  Status SetText(int id, std::string_view value);
  Status SetTime(int id, uint64_t file_time);
  Status RemoveProperty(int id);
  /// Writes the changes into the database; in direct mode they are in the file then, otherwise at its commit.
  Status Persist();

 private:
  explicit SummaryInfo(std::shared_ptr<Core> core, int updates) : core_(std::move(core)), updates_(updates) {}
  struct Property {
    uint32_t type = 0;
    std::string content;  // behind the type, as stored; of a text its bytes without the end
  };

  Status Parse(const std::string& bytes);
  std::string Build() const;
  Status CountUpdate();
  int CodePage() const;

  std::shared_ptr<Core> core_;
  int updates_;
  bool changed_ = false;
  std::string head_;  // the bytes before the properties, kept from the file
  std::map<int, Property> properties_;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_SUMMARY_INFO_H_
