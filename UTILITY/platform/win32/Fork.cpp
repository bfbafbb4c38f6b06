// There is no fork.
#include "platform/Fork.h"

namespace qel::platform {

bool watchForks(void (* /*before*/)(), void (* /*inParent*/)(), void (* /*inChild*/)()) noexcept {
    return false;
}

}  // namespace qel::platform
