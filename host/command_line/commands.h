// The commands of the reference host. Each takes the words after its name and gives the exit code, or throws a Failure.
#pragma once

#include <string>
#include <vector>

#include "host/app/host_app.h"
#include "host/words/console.h"

using Words = std::vector<std::string>;

ExitCode RunDemo(CHostApp& app, const Words& words);
ExitCode RunPorts(CHostApp& app, const Words& words);
ExitCode RunSimulate(CHostApp& app, const Words& words);
ExitCode RunDownload(CHostApp& app, const Words& words);
ExitCode RunShow(CHostApp& app, const Words& words);
ExitCode RunLearn(CHostApp& app, const Words& words);
ExitCode RunRead(CHostApp& app, const Words& words);
ExitCode RunChart(CHostApp& app, const Words& words);
ExitCode RunCheck(CHostApp& app, const Words& words);
ExitCode RunDb(CHostApp& app, const Words& words);
ExitCode RunScript(CHostApp& app, const Words& words);
ExitCode RunVersion(CHostApp& app, const Words& words);
ExitCode RunLocale(CHostApp& app, const Words& words);
ExitCode RunConvert(CHostApp& app, const Words& words);
ExitCode RunRecord(CHostApp& app, const Words& words);
ExitCode RunStatus(CHostApp& app, const Words& words);
ExitCode RunReload(CHostApp& app, const Words& words);
ExitCode RunRecover(CHostApp& app, const Words& words);
ExitCode RunSend(CHostApp& app, const Words& words);
ExitCode RunWrite(CHostApp& app, const Words& words);
