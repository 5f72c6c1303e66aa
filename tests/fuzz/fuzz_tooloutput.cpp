// SPDX-License-Identifier: MIT
// What adb and aapt print comes from devices and files of strangers.
#include "devices/tooloutput.h"

#include <cstddef>
#include <cstdint>

namespace {

void require(bool promise)
{
    if (!promise)
        __builtin_trap();
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));

    const QStringList serials = ToolOutput::readySerials(text);
    require(serials.size() <= text.count(QLatin1Char('\n')));
    for (const QString& serial : serials)
        require(!serial.isEmpty() && !serial.contains(QLatin1Char('\n')));

    const QString name = ToolOutput::packageName(text);
    require(name.isEmpty() || text.contains(name));

    for (const bool crashed : {false, true}) {
        const ToolOutput::InstallOutcome outcome = ToolOutput::installOutcome(text, crashed);
        const bool installed = outcome.kind == ToolOutput::InstallOutcome::Installed;
        require(!installed || (!crashed && text.contains(QLatin1String("Success"))));
        const bool refused = outcome.kind == ToolOutput::InstallOutcome::Refused;
        require(refused || outcome.code.isEmpty());
        require(!refused || text.contains(QLatin1Char('[') + outcome.code + QLatin1Char(']')));
    }
    require(ToolOutput::uninstallFailed(text) == text.contains(QLatin1String("Failure")));
    return 0;
}
