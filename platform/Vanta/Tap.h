// The tap that is there, for who takes its place for a while and goes on telling it.
#pragma once

#include "Vanta/Publisher.h"
#include "VynExport.h"

namespace Vanta {

// A tap and what it is called with; null if there is none.
struct InstalledTap {
    Tap function = nullptr;
    void* context = nullptr;
};

// What tapIs() was called with last. Thread: the publishers'.
VYN_EXPORT InstalledTap installedTap() noexcept;

}  // namespace Vanta
