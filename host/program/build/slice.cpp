// SPDX-License-Identifier: MIT
#include "build/slice.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

#include <optional>

namespace {

struct Slices {
    Q_DECLARE_TR_FUNCTIONS(Slices)
};

const QLatin1String slurmTask("SLURM_ARRAY_TASK_ID");
const QLatin1String kubernetesIndex("JOB_COMPLETION_INDEX");
const QLatin1String gitlabIndex("CI_NODE_INDEX");
const QLatin1String gitlabTotal("CI_NODE_TOTAL");

// Plain digits: signs, blanks and other numerals are slips, not numbers.
std::optional<int> numberIn(const QString& text, int least)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,9}\\z"));
    if (!digits.match(text).hasMatch() || text.toInt() < least)
        return std::nullopt;
    return text.toInt();
}

// Takes numbers out of variables, and keeps the first thing that is wrong with one.
class Variables {
public:
    Variables(const QProcessEnvironment& environment, QString& fault)
        : m_environment(environment)
        , m_fault(fault)
    {
    }

    // An empty variable says nothing, as in shells.
    bool has(const QString& name) const { return !m_environment.value(name).isEmpty(); }

    int number(const QString& name, int least) const
    {
        const QString text = m_environment.value(name);
        const std::optional<int> number = numberIn(text, least);
        if (number || !m_fault.isEmpty())
            return number.value_or(least);
        m_fault = text.isEmpty()
            ? Slices::tr("%1 is missing").arg(name)
            : Slices::tr("%1 is a number from %2 on, not '%3'").arg(name, QString::number(least), text);
        return least;
    }

private:
    const QProcessEnvironment& m_environment;
    QString& m_fault;
};

Slice ofOption(const QString& text, QString& fault)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    const std::optional<int> index = numberIn(parts.first(), 1);
    const std::optional<int> count = parts.size() == 2 ? numberIn(parts.last(), 1) : std::nullopt;
    if (index && count && *index <= *count)
        return {*index - 1, *count, QStringLiteral("--slice")};
    fault = Slices::tr("--slice is I/N, from 1/N to N/N, not '%1'").arg(text);
    return {};
}

// The tasks of an array are numbered from MIN in equal steps; only lists like 1,5,6 are not.
Slice ofSlurm(const Variables& variables, QString& fault)
{
    const QString stepName = QStringLiteral("SLURM_ARRAY_TASK_STEP");
    const int task = variables.number(slurmTask, 0);
    const int first = variables.number(QStringLiteral("SLURM_ARRAY_TASK_MIN"), 0);
    const int count = variables.number(QStringLiteral("SLURM_ARRAY_TASK_COUNT"), 1);
    const int step = variables.has(stepName) ? variables.number(stepName, 1) : 1;
    const int index = (task - first) / step;
    if (fault.isEmpty() && (task < first || (task - first) % step != 0 || index >= count)) {
        fault = Slices::tr("SLURM_ARRAY_TASK_ID is %1, which is none of %2 tasks from %3 on in steps of %4; "
                           "number the array evenly, or say --slice I/N")
                    .arg(task)
                    .arg(count)
                    .arg(first)
                    .arg(step);
    }
    return {index, count, slurmTask};
}

Slice ofKubernetes(const Variables& variables, int count, QString& fault)
{
    const int index = variables.number(kubernetesIndex, 0);
    if (!fault.isEmpty())
        return {};
    if (count == 0)
        fault = Slices::tr("JOB_COMPLETION_INDEX does not tell of how many: say --slices N, as many as the "
                           "job has completions");
    else if (index >= count)
        fault = Slices::tr("JOB_COMPLETION_INDEX is %1, but with --slices %2 the last one is %3")
                    .arg(index)
                    .arg(count)
                    .arg(count - 1);
    return {index, count, kubernetesIndex};
}

Slice ofGitlab(const Variables& variables, QString& fault)
{
    const int index = variables.number(gitlabIndex, 1);
    const int count = variables.number(gitlabTotal, 1);
    if (fault.isEmpty() && index > count)
        fault = Slices::tr("CI_NODE_INDEX is %1, but CI_NODE_TOTAL is %2").arg(index).arg(count);
    return {index - 1, count, gitlabIndex};
}

// The variables by which schedulers say that a process is one of several. GitLab sets its total alone, to 1,
// for a job that is one of a kind.
QStringList speakers(const Variables& variables)
{
    QStringList names;
    for (const QLatin1String name : {slurmTask, kubernetesIndex}) {
        if (variables.has(name))
            names.append(name);
    }
    const bool isOneOfMany = variables.has(gitlabTotal) && variables.number(gitlabTotal, 1) != 1;
    if (variables.has(gitlabIndex) || isOneOfMany)
        names.append(gitlabIndex);
    return names;
}

} // namespace

Slice Slice::of(const QString& slice, const QString& slices, const QProcessEnvironment& environment,
                QString& fault)
{
    fault.clear();
    const int wanted = slices.isEmpty() ? 0 : numberIn(slices, 1).value_or(-1);
    if (wanted < 0)
        fault = Slices::tr("--slices is a number from 1 on, not '%1'").arg(slices);
    else if (!slice.isEmpty() && wanted > 0)
        fault = Slices::tr("--slice says of how many already: leave --slices out");
    if (!fault.isEmpty())
        return {};
    if (!slice.isEmpty())
        return ofOption(slice, fault);

    const Variables variables(environment, fault);
    const QStringList names = speakers(variables);
    if (names.size() > 1)
        fault = Slices::tr("%1 and %2 both say which slice this is: choose with --slice I/N")
                    .arg(names.at(0), names.at(1));
    else if (names.isEmpty() && wanted > 0)
        fault = Slices::tr("--slices says of how many, but nothing says which: say --slice I/N");
    if (!fault.isEmpty() || names.isEmpty())
        return {};

    const Slice found = names.first() == slurmTask ? ofSlurm(variables, fault)
        : names.first() == kubernetesIndex         ? ofKubernetes(variables, wanted, fault)
                                                   : ofGitlab(variables, fault);
    if (fault.isEmpty() && wanted > 0 && found.count != wanted)
        fault = Slices::tr("--slices is %1, but by %2 there are %3: choose with --slice I/N")
                    .arg(wanted)
                    .arg(found.source)
                    .arg(found.count);
    return fault.isEmpty() ? found : Slice();
}
