/// @file
/// Names of the connector's protocol, for logs and for the exchange with its synchronisation
/// engine: result statuses, and operations by their tag and their code. Constant tables; any thread
/// may call. Nothing is logged.
#ifndef QELUTILITY_BXSTATUSNAMES_H
#define QELUTILITY_BXSTATUSNAMES_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

/// "Status=EOK" for 0; the number, as in "Status=43", for one without a name. Statuses 0 to 42 have
/// names; that of 42 is the bare prefix "CAPOPST_".
QELUTILITY_API VStr StatusText(int status);

/// The code of an operation's tag, such as 20000 for "<ADD>", without regard to case: 0, or
/// QEL_MALFORMED for any other text, null included, and then `code` is as it was.
QELUTILITY_API int OperationFromTag(const char* tag, unsigned long& code);

/// The name without brackets, "ADD" for 20000; null for a code without one, such as 20004. The
/// text is the library's own.
QELUTILITY_API const char* OperationName(unsigned long code);

#endif
