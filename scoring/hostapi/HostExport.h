// ORBSCORE_EXPORT marks what the host scoring library shows to its plug-ins.
//
// The declarations of this folder are the host's interface. A plug-in is compiled against them and
// linked against nothing: its references are resolved from the process that loads it.

#ifndef SCORING_HOSTAPI_HOSTEXPORT_H_
#define SCORING_HOSTAPI_HOSTEXPORT_H_

#define ORBSCORE_EXPORT __attribute__((visibility("default")))

#endif  // SCORING_HOSTAPI_HOSTEXPORT_H_
