// The engine's exports as lfrun calls them.  The engine library is loaded
// when the first calculation needs it, so that what lfrun does on its own
// (the options, this help, a usage error, the case check) runs without the
// engine and its start-up in the process.
#pragma once

#include <string>

#include "lfengine.h"

struct Engine {
  decltype(&LFInit) init = nullptr;
  decltype(&LFCal) cal = nullptr;
  decltype(&LFFinilize) finish = nullptr;
};

// Loads the engine library, where the dynamic loader finds it for lfrun
// (beside lfrun's other libraries); false, with the reason in why, when it
// cannot be loaded or lacks an export.
bool load_engine(Engine& engine, std::string& why);
