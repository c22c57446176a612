// For sources that are not in the host's namespace yet.
#pragma once

namespace zorv {}
using namespace zorv;
