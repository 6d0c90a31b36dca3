// The one export annotation: declarations that are marked with it are the interface of a shared
// library.
//
// Everything else is hidden, so that the switches, registries and identities that must exist once
// in a process are not duplicated by a plug-in that happens to instantiate the same inline code.
#pragma once

#define VYN_EXPORT __attribute__((visibility("default")))
