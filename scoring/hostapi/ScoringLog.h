// The host's trace log: one for the process.
//
// A line is passed on when its level is at most the log's level; the level is 0 at first, so
// nothing is traced until somebody asks for it. Lines go to the sink, by default the standard
// error stream.
//
// Threads: every operation may be called at any time; the sink is called by one thread at a time.

#ifndef SCORING_HOSTAPI_SCORINGLOG_H_
#define SCORING_HOSTAPI_SCORINGLOG_H_

#include <functional>
#include <memory>
#include <string>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT ScoringLog {
 public:
  // Receives a line without line feed, and its level. Must not call the log.
  using Sink = std::function<void(int level, const std::string& line)>;

  static ScoringLog& GetInstance();

  ScoringLog(const ScoringLog&) = delete;
  ScoringLog& operator=(const ScoringLog&) = delete;

  int GetLevel() const noexcept;
  void SetLevel(int level) noexcept;

  // An empty sink restores the default one.
  void SetSink(Sink sink);

  // Writes `format` with its first "%s" replaced by `text`. Nothing else in the format is
  // interpreted. Never throws: a line that cannot be made or written is dropped.
  void TraceText(int level, const char* format, const char* text) noexcept;

 private:
  struct State;

  ScoringLog();
  ~ScoringLog();

  std::unique_ptr<State> state_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCORINGLOG_H_
