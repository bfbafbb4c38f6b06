/// @file
/// The whole interface of the library in one include. Each header describes what it offers
/// and which threads may use it. C gets what has C linkage, and the records that it works on.
#ifndef QELUTILITY_QELUTILITY_H
#define QELUTILITY_QELUTILITY_H

#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxFileUtil.h"
#include "QelUtility/BxMime.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "QelUtility/BxRepeat.h"
#include "QelUtility/BxTrace.h"
#include "QelUtility/QelTypes.h"
#include "QelUtility/QelVersion.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptExpand.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/VStr.h"
#include "QelUtility/ZQDate.h"
#include "QelUtility/ZQDateTime.h"
#include "QelUtility/ZQDuration.h"

#ifdef __cplusplus
#include "QelUtility/BxCharConv.h"
#include "QelUtility/BxDataStream.h"
#include "QelUtility/BxFieldIDs.h"
#include "QelUtility/BxHost.h"
#include "QelUtility/BxParseValues.h"
#include "QelUtility/BxStatusNames.h"
#include "QelUtility/BxTimezones.h"
#include "QelUtility/CSLock.h"
#include "QelUtility/IRMonitorManager.h"
#include "QelUtility/RepeatConversion.h"
#include "QelUtility/VStrArray.h"
#endif

#endif
