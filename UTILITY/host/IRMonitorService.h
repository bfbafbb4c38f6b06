// The infrared monitor as a service: from the state it is found in to the state that is wanted. The
// caller's thread; each pending state is waited for by at most ten polls, a second apart.
#ifndef QEL_HOST_IRMONITORSERVICE_H
#define QEL_HOST_IRMONITORSERVICE_H

#include "host/IRMonitorBackEnd.h"

namespace qel::host {

// True when the service has been stopped, or was not running.
[[nodiscard]] bool stopMonitorService(IRMonitorBackEnd& system);
// True when the service has been started, or was running.
[[nodiscard]] bool startMonitorService(IRMonitorBackEnd& system);
// True when there is such a service.
[[nodiscard]] bool monitorServiceExists(IRMonitorBackEnd& system);

}  // namespace qel::host

#endif
