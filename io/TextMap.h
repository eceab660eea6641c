// A map from texts that is searched by views of texts.

#ifndef IO_TEXTMAP_H_
#define IO_TEXTMAP_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace orbseq {

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept {
    return std::hash<std::string_view>()(text);
  }
};

template <class Value>
using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

}  // namespace orbseq

#endif  // IO_TEXTMAP_H_
