// Reading and writing descriptors in a process that can be asked to stop (io/process.h).
//
// A pipe may keep a call waiting for ever, and the request reaches whatever thread the system
// chooses, which need not be the one that waits. So each call first waits until it can go on, and
// looks now and then whether it still should.

#ifndef IO_DESCRIPTOR_H_
#define IO_DESCRIPTOR_H_

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orbseq {

// Fills the room, or reads what there is before the end; the number of bytes read. Nothing when
// that cannot be done: errno tells why, EINTR on a request to stop.
std::optional<std::size_t> readAll(int descriptor, std::span<char> room) noexcept;

// Writes all of the bytes. `name` is what the descriptor is called in errors: FileError when that
// cannot be done, with EINTR on a request to stop.
void writeAll(int descriptor, std::string_view bytes, const std::string& name);

}  // namespace orbseq

#endif  // IO_DESCRIPTOR_H_
