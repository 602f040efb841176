#pragma once
// How a reproduce run is ended: SIGINT (Ctrl-C), SIGTERM, SIGHUP (the ssh
// session dropped) or its time limit.

// Holds the three signals back for the rest of the process: none can end it
// before the levels and the log path are put back, a second Ctrl-C included.
// Tools started afterwards inherit the held signals.
void HoldStopSignals();

// Waits for one of them, or for seconds when seconds > 0: the signal's
// number, or 0 when the time ran out.
int WaitForStop(int seconds);
