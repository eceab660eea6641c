// A plug-in whose entry hands out nothing.

#include "scoring/hostapi/ScoreTranslator.h"

extern "C" ORBSCORE_EXPORT OrbScore::ScoreTranslator* GiveMyTranslator();

OrbScore::ScoreTranslator* GiveMyTranslator() { return nullptr; }
