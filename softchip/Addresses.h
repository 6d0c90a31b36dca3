// The chip's parser, tables and explanations use the addresses of platform/Net.
#pragma once

#include "Net/IpAddress.h"
#include "Net/MacAddress.h"
#include "Net/Prefix.h"

namespace SoftChip {

using Net::addressBits;
using Net::Family;
using Net::IpAddress;
using Net::MacAddress;
using Net::Prefix;

}  // namespace SoftChip
