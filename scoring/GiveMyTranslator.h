// The entry of the module: what a host looks up by name after loading it.

#ifndef SCORING_GIVEMYTRANSLATOR_H_
#define SCORING_GIVEMYTRANSLATOR_H_

#include "common/OrbExport.h"
#include "scoring/hostapi/ScoreTranslator.h"

// A new translator, which the caller owns and deletes; null when it cannot be made.
extern "C" ORBSEQ_EXPORT OrbScore::ScoreTranslator* GiveMyTranslator();

#endif  // SCORING_GIVEMYTRANSLATOR_H_
