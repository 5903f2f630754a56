#ifndef KITWRIGHT_BASE_TEXT_SYSTEM_H_
#define KITWRIGHT_BASE_TEXT_SYSTEM_H_

namespace kw {

/// Case of one character beyond ASCII, from the system's tables; the character itself where it has none.
char32_t SystemUpper(char32_t c);
char32_t SystemLower(char32_t c);

}  // namespace kw

#endif  // KITWRIGHT_BASE_TEXT_SYSTEM_H_
