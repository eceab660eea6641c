// The compiled form in a file: an image (engine/CompiledLattice.h) as it is in memory.
//
// It is for services that want a model at once, on the machine and with the version that wrote it:
// another version, byte order or checksum is refused, and the model is compiled anew from another
// form. Every number in it is checked before it is used.
//
// The checksum is the 64-bit XXH3 of the image with zeros in the checksum's place.

#ifndef ENGINE_COMPILEDFORM_H_
#define ENGINE_COMPILEDFORM_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

#include "common/OrbExport.h"
#include "engine/CompiledLattice.h"

namespace orbseq::engine {

// What is wrong with an image: "offset 0x1A4: detail".
class ORBSEQ_EXPORT CompiledFormError : public std::runtime_error {
 public:
  CompiledFormError(std::uint64_t offset, const std::string& detail);
  ~CompiledFormError() override;
};

ORBSEQ_EXPORT std::uint64_t checksumOf(std::span<const std::byte> image) noexcept;

// Whether the bytes begin as an image does.
ORBSEQ_EXPORT bool beginsCompiledForm(std::span<const std::byte> bytes) noexcept;

// Checks the image, all of it, and takes it over. Throws CompiledFormError.
ORBSEQ_EXPORT CompiledLattice
readCompiledForm(std::unique_ptr<const CompiledLattice::Storage> storage);

}  // namespace orbseq::engine

#endif  // ENGINE_COMPILEDFORM_H_
