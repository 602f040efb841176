#pragma once
// How a reproduce run is ended: SIGINT (Ctrl-C), SIGTERM, SIGHUP (the ssh
// session dropped) or its time limit.

// Holds the three signals back for the rest of the process: none can end it
// before the levels and the log path are put back, a second Ctrl-C included.
void HoldStopSignals();

// Waits for one of them, or for seconds when seconds > 0: the signal's
// number, or 0 when the time ran out. From then on they are ignored, by this
// process and by the tools it starts.
int WaitForStop(int seconds);
