/// @file
/// The system's own infrared monitor, stopped while the connector talks to a phone over infrared
/// and given back afterwards, and the transport that the connector is to use, kept in its registry
/// root. On the NT family the monitor is the service "IrMon", on the 9x family the process
/// "IRMON.EXE". Elsewhere there is none: nothing can be stopped, started or found. One thread at a
/// time; the first getManager() comes before other threads share the object. Starting and stopping
/// block the caller for about ten seconds at most for each state that the service passes through.
#ifndef QELUTILITY_IRMONITORMANAGER_H
#define QELUTILITY_IRMONITORMANAGER_H

#include "QelUtility/QelTypes.h"

/// The infrared monitor and the connector's choice of transport.
class QELUTILITY_API IRMonitorManager {
  public:
    /// The only instance, made at the first call; null when there is no memory for it.
    static IRMonitorManager* getManager();
    /// Destroys the object. The next getManager() makes a fresh one.
    void Release();

    IRMonitorManager(const IRMonitorManager&) = delete;
    IRMonitorManager& operator=(const IRMonitorManager&) = delete;

    /// Gives the infrared port to the monitor. On the 9x family true only for a start that
    /// happened: false when the monitor ran already; the process that it starts stays suspended.
    bool startIrMon();
    /// Takes the port from the monitor; true also when it was not running.
    bool stopIrMon();
    /// Whether the system has a monitor; on the 9x family whether one was ever seen running.
    bool isIRInstalled();

    /// Records infrared as the selected transport. Does nothing without a registry root.
    void selectIR();
    /// Records USB, in the same way.
    void deselectIR();
    /// Whether infrared is recorded; false without a registry root.
    bool isIRSelected();

    ///@{
    /// Notes that callers leave for each other. startIrMon clears the first and stopIrMon the
    /// second, whatever comes of them.
    void setMustStart();
    bool MustStart();
    void setMustStop();
    bool MustStop();
    ///@}

  private:
    IRMonitorManager() = default;
    ~IRMonitorManager() = default;

    static IRMonitorManager* m_sTheManager;
    static bool m_bIR9xInstalled;

    bool m_bMustStart = false;
    bool m_bMustStop = false;
};

#endif
