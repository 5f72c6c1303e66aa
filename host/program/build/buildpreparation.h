// SPDX-License-Identifier: MIT
#ifndef BUILDPREPARATION_H
#define BUILDPREPARATION_H

#include "build/buildplaces.h"
#include "build/packagefacts.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

class Console;
struct IconJob;
struct Job;
struct JobChannel;

/** What all channels of a run have in common, made once: the imported SDKs and the icons. */
class BuildPreparation {
public:
    BuildPreparation(const Job& job, const BuildPlaces& places, const PackageFacts& base);

    /** Imports the SDKs that the channels need; what became of one is in faultOf(). */
    void importSdks(const QVector<JobChannel>& channels);

    /** Decodes the base where a channel changes its manifest; false with a fault when that cannot be done. */
    bool decodeBase(const QVector<JobChannel>& channels, QString& fault);

    /** Makes the icons of the channels; false with a fault when none could be made. What became of one
     * channel's is in faultOf(). */
    bool makeIcons(const QVector<JobChannel>& channels, QString& fault);

    /** Why an SDK or an icon that a channel needs is not there; empty when all are. */
    QString faultOf(const JobChannel& channel) const;

private:
    void findMissing(const IconJob& icons, const QStringList& missing, const QStringList& causes);
    bool makeIconsFor(int platform, const QVector<JobChannel>& channels, QString& fault);

    const Job& m_job;
    const BuildPlaces m_places;
    const PackageFacts m_base;
    QMap<QString, QString> m_faults; ///< by SDK
    QMap<QString, QString> m_iconFaults; ///< by the channel's folder
};

#endif
