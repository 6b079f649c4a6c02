#include "ZentoCore/Error.h"

#include <system_error>

namespace zento {

Error systemError(const std::string& action, const std::string& path, int errorNumber)
{
    const std::string reason = std::generic_category().message(errorNumber);
    return {"errno", errorNumber, action + " " + path + ": " + reason};
}

} // namespace zento
