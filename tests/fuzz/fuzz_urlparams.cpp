// SPDX-License-Identifier: MIT
// The parameters of any URL are those that the plain form finds, whatever the map held before.
#include "fuzz.h"
#include "plaintexts.h"

#include <quenzotool.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const QString url = input.restAsText();
    QMap<QString, QString> params{{QStringLiteral("earlier"), QStringLiteral("value")}};
    QuenzoTool::getUrlParam(url, params);
    Fuzz::require(params == PlainTexts::params(url), "parameters are those of the plain form");
    return 0;
}
