#include "tools/board_report.h"

#include "tools/failure.h"
#include "tools/probe.h"

namespace tools
{

namespace
{

Json of(const Holders &holders)
{
    Json list = Json::array();
    for (const Process &process : holders.processes)
        list.push_back({{"process", process.id}, {"command", process.command}, {"user", process.user}});
    return list;
}

void addProbe(Board &board, Json &report)
{
    const Probe found = probe(board);
    report["firmware_runs"] = found.firmwareRuns;
    if (found.boardNumber)
        report["board_number"] = *found.boardNumber;
    if (found.version)
        report["firmware_version"] = readable(*found.version);
    if (found.picVersion)
        report["pic_version"] = readable(*found.picVersion);
    if (found.picSerial)
        report["pic_serial_number"] = readable(*found.picSerial);
    if (found.dallasSerial) {
        report["one_wire_number"] = hexadecimal(*found.dallasSerial);
        report["one_wire_check"] = isCheckByteRight(*found.dallasSerial);
    }
    if (!found.trouble.empty())
        report["error"] = found.trouble;
}

void sayIf(const Json &report, const char *key, const char *label)
{
    if (report.contains(key))
        say("  %-18s%s\n", label,
            report[key].is_string() ? report[key].get<std::string>().c_str() : report[key].dump().c_str());
}

}  // namespace

Json reportOf(const Settings &settings, int device, const Holders &holders)
{
    Json report = {{"board", device}, {"path", pathOf(device)}};
    if (const cabinet::Board *named = settings.cabinet.board(device); named && !named->name.empty())
        report["name"] = named->name;
    if (const auto model = modelOf(device)) {
        report["model"] = nameOf(*model);
        report["speed"] = isHighSpeed(device) ? "high" : "full";
    }
    try {
        Board board(settings, std::to_string(device));
        report["node"] = board.node().isCharacterDevice() ? "device" : "virtual";
        addProbe(board, report);
    } catch (const Refusal &refusal) {
        report["error"] = refusal.what();
    }
    report["open_in"] = of(holders);
    report["open_in_complete"] = holders.complete;
    return report;
}

void sayReport(const Json &report)
{
    const std::string name = report.contains("name") ? " (" + report["name"].get<std::string>() + ")" : "";
    say("%s%s  %s, %s speed%s\n", report["path"].get<std::string>().c_str(), name.c_str(),
        report.value("model", "unknown model").c_str(), report.value("speed", "unknown").c_str(),
        report.value("node", "") == "virtual" ? ", virtual" : "");
    if (report.contains("firmware_runs"))
        say("  %-18s%s\n", "firmware", report["firmware_runs"] ? "runs" : "does not run");
    sayIf(report, "firmware_version", "version");
    sayIf(report, "board_number", "board number");
    sayIf(report, "pic_version", "PIC version");
    sayIf(report, "pic_serial_number", "PIC serial number");
    if (report.contains("one_wire_number"))
        say("  %-18s%s, check byte %s\n", "1-Wire number", report["one_wire_number"].get<std::string>().c_str(),
            report["one_wire_check"] ? "right" : "WRONG");
    std::string holders;
    for (const Json &holder : report["open_in"])
        holders += (holders.empty() ? "" : ", ") + Process{holder["process"], holder["command"], holder["user"]}.text();
    say("  %-18s%s%s\n", "open in", holders.empty() ? "no other process" : holders.c_str(),
        report["open_in_complete"] ? "" : "; not every process could be looked at");
    sayIf(report, "error", "trouble");
}

}  // namespace tools
