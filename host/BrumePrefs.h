#pragma once
#include "host/HostTypes.h"
namespace cairnset { class BrumePrefs { public: virtual ~BrumePrefs() = default; const FSRef* getItemsFSRef(){return nullptr;} void initPrefs(void*){} }; }
