// Helpers with which the tests of forwarding state read objects and name interfaces.
#pragma once

#include "Plexa/IntfId.h"
#include "TableRow.h"

inline Plexa::IntfId intf(char const* name) {
    return *Plexa::IntfId::fromName(name);
}
