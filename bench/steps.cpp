#include "bench/steps.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace orbseq::bench {

Sample measured(const std::function<double()>& run) {
  int pipe[2];
  if (::pipe(pipe) != 0) std::abort();
  std::fflush(nullptr);  // or the child would write it once more
  const pid_t child = ::fork();
  if (child < 0) std::abort();
  if (child == 0) {
    double seconds = -1.0;
    try {
      seconds = run();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
    }
    const bool told = ::write(pipe[1], &seconds, sizeof seconds) == sizeof seconds;
    ::_exit(told && seconds >= 0.0 ? 0 : 1);
  }
  ::close(pipe[1]);  // so that a child that dies ends the reading
  Sample sample;
  const bool heard = ::read(pipe[0], &sample.seconds, sizeof sample.seconds) ==
                     static_cast<ssize_t>(sizeof sample.seconds);
  int status = 0;
  struct rusage usage {};
  ::wait4(child, &status, 0, &usage);
  ::close(pipe[0]);
  if (!heard || status != 0) std::exit(1);
  sample.mebibytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
  return sample;
}

void measure(std::vector<Step>& steps, int rounds) {
  for (int round = 0; round < rounds; ++round)
    for (Step& step : steps) step.samples.push_back(measured(step.run));
}

double medianSeconds(const Step& step) {
  std::vector<double> seconds;
  for (const Sample& sample : step.samples) seconds.push_back(sample.seconds);
  std::sort(seconds.begin(), seconds.end());
  return seconds[seconds.size() / 2];
}

double peakMebibytes(const Step& step) {
  double most = 0.0;
  for (const Sample& sample : step.samples) most = std::max(most, sample.mebibytes);
  return most;
}

}  // namespace orbseq::bench
