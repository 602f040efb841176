#pragma once
// logmgr-cli never runs a flow beside the window or beside another
// logmgr-cli of the same user.

// True, after one line on standard error, when the window's lock names a
// live logmgr or another logmgr-cli holds ".logmgr-cli.lock"; otherwise this
// process now holds that lock.
bool AnotherInstanceRuns();
