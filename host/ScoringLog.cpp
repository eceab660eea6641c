#include "scoring/hostapi/ScoringLog.h"

#include <atomic>
#include <iostream>
#include <mutex>
#include <string_view>
#include <utility>

namespace OrbScore {
namespace {

void writeToStandardError(int, const std::string& line) { std::cerr << line + '\n'; }

std::string lineOf(std::string_view format, std::string_view text) {
  std::string line(format);
  const std::size_t mark = line.find("%s");
  if (mark != std::string::npos) line.replace(mark, 2, text);
  return line;
}

}  // namespace

struct ScoringLog::State {
  std::atomic<int> level{0};
  std::mutex mutex;  // guards the sink, and is held while it runs
  Sink sink = writeToStandardError;
};

ScoringLog::ScoringLog() : state_(std::make_unique<State>()) {}
ScoringLog::~ScoringLog() = default;

ScoringLog& ScoringLog::GetInstance() {
  // Deliberate: never destroyed, since plug-ins may trace while the process ends.
  static ScoringLog& log = *new ScoringLog;
  return log;
}

int ScoringLog::GetLevel() const noexcept { return state_->level.load(std::memory_order_relaxed); }

void ScoringLog::SetLevel(int level) noexcept {
  state_->level.store(level, std::memory_order_relaxed);
}

void ScoringLog::SetSink(Sink sink) {
  if (!sink) sink = writeToStandardError;
  {
    const std::lock_guard lock(state_->mutex);
    state_->sink.swap(sink);
  }
  // The previous sink goes here, outside the lock.
}

void ScoringLog::TraceText(int level, const char* format, const char* text) noexcept {
  if (level > GetLevel()) return;
  try {
    const std::string line = lineOf(format != nullptr ? format : "", text != nullptr ? text : "");
    const std::lock_guard lock(state_->mutex);
    state_->sink(level, line);
  } catch (...) {
    // A trace that fails must not fail what it traces.
  }
}

}  // namespace OrbScore
