// The whole interface of the library in one include. Each header says for itself what it offers and
// which threads may use it.
#ifndef QELUTILITY_QELUTILITY_H
#define QELUTILITY_QELUTILITY_H

#include "QelUtility/BxCharConv.h"
#include "QelUtility/BxDataStream.h"
#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxFieldIDs.h"
#include "QelUtility/BxFileUtil.h"
#include "QelUtility/BxHost.h"
#include "QelUtility/BxMime.h"
#include "QelUtility/BxParseValues.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "QelUtility/BxRepeat.h"
#include "QelUtility/BxStatusNames.h"
#include "QelUtility/BxTimezones.h"
#include "QelUtility/BxTrace.h"
#include "QelUtility/CSLock.h"
#include "QelUtility/IRMonitorManager.h"
#include "QelUtility/QelTypes.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RepeatConversion.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"
#include "QelUtility/ZQDate.h"

#endif
