#include "cli/Output.h"

#include <cerrno>
#include <cstdio>

#include "cli/exitStatus.h"
#include "io/IoError.h"
#include "io/descriptor.h"
#include "io/process.h"

namespace orbseq {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16U;

const char* const kName = "standard output";

}  // namespace

Output::Output(const std::string& path) {
  if (path != "-") file_.emplace(path);
}

void Output::flushIfFull() {
  if (text_.size() >= kBlockBytes) flush();
}

void Output::flush() {
  if (interrupted()) throw Interrupted();
  if (file_)
    file_->write(text_);
  else
    writeAll(static_cast<int>(StandardStream::kOutput), text_, kName);
  text_.clear();
}

void Output::finish() {
  flush();
  if (file_)
    file_->commit();
  else if (std::fclose(stdout) != 0)
    throw FileError(kName, "close", errno);
}

OutputStream::OutputStream(Output& output)
    : SinkStream([&output](std::string_view bytes) {
        output.text().append(bytes);
        output.flushIfFull();
      }) {}

}  // namespace orbseq
