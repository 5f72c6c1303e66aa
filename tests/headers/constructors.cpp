// SPDX-License-Identifier: MIT
#include <installapk.h>
#include <pythonforqt.h>
#include <pythontoolthread.h>
#include <threadcommon.h>
#include <threadgenerateicon.h>

#include <type_traits>

// Hosts may rely on the constructors as they were declared: none is explicit.
template <typename... Class>
constexpr bool areMadeFromAParent = (std::is_convertible_v<QObject*, Class> && ...);

static_assert(
    areMadeFromAParent<CInstallApk, PythonForQt, PythonToolThread, ThreadCommon, ThreadGenerateIcon>,
    "a parent turns into an object where one is wanted");
