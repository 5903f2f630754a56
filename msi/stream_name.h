#ifndef KITWRIGHT_MSI_STREAM_NAME_H_
#define KITWRIGHT_MSI_STREAM_NAME_H_

#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::msi {

/// First character of the stored name of a stream that holds a table.
inline constexpr char16_t kTableStreamMark = 0x4840;

/// The name under which the compound file keeps the stream `name` (UTF-8): two characters of the sixty-four
/// common ones are packed into one. Names that begin with a control character, such as the summary
/// information's, are kept as they stand, and no table can have one. Fails with kErrorInvalidName when the
/// stored name would be empty or longer than the 31 characters of a directory entry, or holds a zero.
Result<std::u16string> EncodeStreamName(std::string_view name, bool is_table);
/// Whether a stored name may differ from another one in case alone. Packed characters have no case.
bool HasCase(std::u16string_view stored);
/// A stored name in capitals: two entries of one storage may not differ in case alone.
std::u16string WithoutCase(const std::u16string& stored);
/// The name, in UTF-8, of a stored stream name, without the mark of tables.
std::string DecodeStreamName(std::u16string_view stored);

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_STREAM_NAME_H_
