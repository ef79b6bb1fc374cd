// The application that the section AcDb:AppInfo names.
#pragma once

#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

/// "NAME V.1.2": name and build of the product that the section's element of product information
/// tells, as UTF-8; "" where there is none.
HOST_API std::string productIn(std::string_view appInfo);

}  // namespace quoin::dwg::container
