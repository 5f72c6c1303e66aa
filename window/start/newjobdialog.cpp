// SPDX-License-Identifier: MIT
#include "window/start/newjobdialog.h"

#include "build/jobtemplate.h"
#include "fileidentity.h"
#include "window/start/gameapk.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>

NewJobDialog::NewJobDialog(const GameApk& apk, QWidget* parent)
    : QDialog(parent)
    , m_folder(new QLineEdit)
    , m_fault(new QLabel)
{
    setObjectName(QStringLiteral("newJob"));
    setWindowTitle(tr("New job"));
    auto* const column = new QVBoxLayout(this);
    column->addLayout(makeGame(apk));
    column->addLayout(makeFolder(apk));
    m_fault->setObjectName(QStringLiteral("newJobFault"));
    m_fault->setWordWrap(true);
    column->addWidget(m_fault);
    column->addStretch(1);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Make the job"));
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &NewJobDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    m_folder->setFocus();
}

QLayout* NewJobDialog::makeGame(const GameApk& apk)
{
    auto* const row = new QHBoxLayout;
    auto* const picture = new QLabel;
    const int side = fontMetrics().lineSpacing() * 4;
    QPixmap icon;
    if (apk.path.isEmpty())
        icon.load(QStringLiteral(":/quenzo/sample/icon.png"));
    else
        icon.loadFromData(apk.icon, "PNG");
    if (!icon.isNull())
        picture->setPixmap(icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    auto* const text = new QLabel;
    text->setObjectName(QStringLiteral("newJobGame"));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    text->setText(apk.path.isEmpty()
                      ? tr("The sample game Sky Harbour with its channels: everything is there to be built.")
                      : tr("%1\nPackage: %2\nAPK: %3").arg(apk.name, apk.package, apk.path));
    row->addWidget(picture);
    row->addWidget(text, 1);
    return row;
}

QLayout* NewJobDialog::makeFolder(const GameApk& apk)
{
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(tr("&Folder of the job:"));
    label->setBuddy(m_folder);
    m_folder->setObjectName(QStringLiteral("newJobFolder"));
    m_folder->setAccessibleName(tr("Folder of the job"));
    const QString name = apk.package.isEmpty() ? QStringLiteral("sky-harbour") : apk.package;
    m_folder->setText(QDir::homePath() + QLatin1Char('/') + name);
    auto* const browse = new QPushButton(tr("&Choose…"));
    browse->setAccessibleName(tr("Choose a folder"));
    connect(browse, &QPushButton::clicked, this, &NewJobDialog::choose);
    row->addWidget(label);
    row->addWidget(m_folder, 1);
    row->addWidget(browse);
    return row;
}

void NewJobDialog::choose()
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("An empty folder for the job"), QDir::homePath());
    if (!folder.isEmpty())
        m_folder->setText(folder);
}

QString NewJobDialog::folder() const
{
    const QString text = m_folder->text().trimmed();
    return placeOf(QDir::isAbsolutePath(text) ? text : QDir::homePath() + QLatin1Char('/') + text);
}

void NewJobDialog::accept()
{
    const QString objection =
        m_folder->text().trimmed().isEmpty() ? tr("no folder is named") : JobTemplate::objectionTo(folder());
    if (objection.isEmpty()) {
        QDialog::accept();
        return;
    }
    m_fault->setText(
        tr("The job cannot be written there: %1. Name another folder; it is made.").arg(objection));
    m_folder->setFocus();
    m_folder->selectAll();
}
