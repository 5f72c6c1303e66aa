// SPDX-License-Identifier: MIT
#include "window/devices/devicespage.h"

#include "window/channels/jobdocument.h"
#include "window/rowtable.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>

#include <algorithm>

namespace {

// The file of a drag that brings one APK; empty for any other.
QString apkOf(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    if (urls.size() != 1)
        return {};
    const QString path = urls.constFirst().toLocalFile();
    return path.endsWith(QLatin1String(".apk"), Qt::CaseInsensitive) ? path : QString();
}

QStringList readySerials(const QVector<Device>& devices)
{
    QStringList serials;
    for (const Device& device : devices) {
        if (device.isReady())
            serials.append(device.serial);
    }
    return serials;
}

} // namespace

DevicesPage::DevicesPage(const JobDocument& document, QWidget* parent)
    : Page(parent)
    , m_document(document)
    , m_listLabel(new QLabel)
    , m_refresh(new QPushButton)
    , m_stack(new QStackedWidget)
    , m_table(new QTableView)
    , m_empty(new QLabel)
    , m_apkLabel(new QLabel)
    , m_apk(new QLineEdit)
    , m_browse(new QPushButton)
    , m_channelLabel(new QLabel)
    , m_channel(new QComboBox)
    , m_install(new QPushButton)
    , m_uninstall(new QPushButton)
    , m_busy(new QProgressBar)
    , m_banner(new QLabel)
{
    setAcceptDrops(true);
    m_refresh->setObjectName(QStringLiteral("refreshDevices"));
    m_table->setObjectName(QStringLiteral("devices"));
    m_empty->setObjectName(QStringLiteral("noDevices"));
    m_apk->setObjectName(QStringLiteral("apk"));
    m_browse->setObjectName(QStringLiteral("browseApk"));
    m_channel->setObjectName(QStringLiteral("jobPackage"));
    m_install->setObjectName(QStringLiteral("install"));
    m_uninstall->setObjectName(QStringLiteral("uninstall"));
    m_banner->setObjectName(QStringLiteral("deviceMessage"));
    layOut();
    connectParts();
    DevicesPage::setTexts();
    showControls();
}

void DevicesPage::layOut()
{
    prepareRows(m_table, &m_model);
    m_table->setWordWrap(true); // of what is to be done
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_listLabel->setBuddy(m_table);
    m_apkLabel->setBuddy(m_apk);
    m_channelLabel->setBuddy(m_channel);
    for (QLabel* const text : {m_empty, m_banner}) {
        text->setWordWrap(true);
        text->setTextFormat(Qt::PlainText);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    m_empty->setAlignment(Qt::AlignCenter);
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_table);
    m_busy->setRange(0, 0);
    m_busy->setTextVisible(false);

    auto* const column = new QVBoxLayout(this);
    auto* const heading = new QHBoxLayout;
    heading->addWidget(m_listLabel, 1);
    heading->addWidget(m_refresh);
    column->addLayout(heading);
    column->addWidget(m_stack, 1);
    auto* const file = new QHBoxLayout;
    file->addWidget(m_apkLabel);
    file->addWidget(m_apk, 1);
    file->addWidget(m_browse);
    column->addLayout(file);
    auto* const own = new QHBoxLayout;
    own->addWidget(m_channelLabel);
    own->addWidget(m_channel, 1);
    column->addLayout(own);
    auto* const deeds = new QHBoxLayout;
    deeds->addWidget(m_install);
    deeds->addWidget(m_uninstall);
    deeds->addWidget(m_busy, 1);
    deeds->addStretch(0);
    column->addLayout(deeds);
    column->addWidget(m_banner);
    const QList<QWidget*> order{m_refresh, m_table, m_apk, m_browse, m_channel, m_install, m_uninstall};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void DevicesPage::connectParts()
{
    connect(m_refresh, &QPushButton::clicked, this, &DevicesPage::ask);
    connect(&m_lister, &DeviceLister::listed, this, &DevicesPage::showDevices);
    connect(&m_lister, &DeviceLister::failed, this, &DevicesPage::showList);
    connect(m_browse, &QPushButton::clicked, this, &DevicesPage::browse);
    connect(m_channel, QOverload<int>::of(&QComboBox::activated), this, [this] {
        const QString folder = m_channel->currentData().toString();
        if (!folder.isEmpty())
            m_apk->setText(QStringLiteral("%1/%2/%2.apk").arg(m_document.outputPath(), folder));
    });
    for (const auto change : {&JobDocument::opened, &JobDocument::closed})
        connect(&m_document, change, this, &DevicesPage::showChannels);
    connect(m_apk, &QLineEdit::returnPressed, m_install, &QPushButton::click);
    connect(m_install, &QPushButton::clicked, this, [this] { begin(true); });
    connect(m_uninstall, &QPushButton::clicked, this, [this] { begin(false); });
    connect(&m_work, &DeviceWork::packageRead, this, [this](const QString& package, const QString& fault) {
        m_isReading = false;
        tell(fault);
        if (fault.isEmpty() && !m_isStopping)
            askBefore(package);
        m_isStopping = false;
        showControls();
        Q_EMIT workChanged();
    });
    connect(&m_work, &DeviceWork::ended, this, [this](bool /*success*/, const QString& text) {
        m_isStopping = false;
        showControls();
        tell(QStringLiteral("%1: %2").arg(m_task.serial, text));
        ask();
        Q_EMIT workChanged();
    });
}

QString DevicesPage::title() const
{
    return tr("Devices");
}

QString DevicesPage::workAtHand() const
{
    if (!m_work.isAtWork())
        return {};
    if (m_isReading)
        return tr("The package's name is being read.");
    return m_task.install ? tr("An APK is being installed on %1.").arg(m_task.serial)
                          : tr("A package is being removed from %1.").arg(m_task.serial);
}

// What a device has begun cannot be called back: its end is waited for, and nothing more begins.
void DevicesPage::stopWork()
{
    m_isStopping = m_work.isAtWork();
    delete m_question;
}

void DevicesPage::setTexts()
{
    m_listLabel->setText(tr("&Attached devices:"));
    m_table->setAccessibleName(tr("Attached devices"));
    m_refresh->setText(tr("&Refresh"));
    m_refresh->setShortcut(QKeySequence::Refresh);
    m_apkLabel->setText(tr("A&PK:"));
    m_apk->setAccessibleName(tr("APK to install"));
    m_apk->setPlaceholderText(tr("Choose an APK, or drop one here"));
    m_browse->setText(tr("&Choose…"));
    m_channelLabel->setText(tr("Package of the open &job:"));
    m_channel->setAccessibleName(tr("Package of the open job"));
    showChannels();
    m_install->setText(tr("&Install…"));
    m_uninstall->setText(tr("&Uninstall…"));
    m_busy->setAccessibleName(tr("The device is at work"));
    m_banner->setAccessibleName(tr("Outcome"));
    m_model.setTexts();
    m_table->resizeColumnsToContents();
    showList(m_fault);
}

void DevicesPage::showEvent(QShowEvent* event)
{
    showChannels(); // the job may have been edited meanwhile
    if (m_hasAsked)
        ask();
    Page::showEvent(event);
}

// adb starts a server that stays: only a person's wish for the list is worth that.
void DevicesPage::ask()
{
    m_hasAsked = true;
    m_lister.ask();
    showControls();
}

void DevicesPage::dragEnterEvent(QDragEnterEvent* event)
{
    if (!apkOf(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void DevicesPage::dropEvent(QDropEvent* event)
{
    m_apk->setText(apkOf(*event->mimeData()));
    event->acceptProposedAction();
}

void DevicesPage::showDevices(const QVector<Device>& devices)
{
    const QString selected = selectedSerial();
    m_model.setDevices(devices);
    m_table->resizeColumnsToContents();
    for (int row = 0; row < devices.size(); ++row) {
        if (devices.at(row).serial == selected || devices.size() == 1)
            m_table->selectRow(row);
    }
    showList({});
}

// What is wrong stands where the list would; an empty list has the usual next step there.
void DevicesPage::showList(const QString& fault)
{
    m_fault = fault;
    if (!fault.isEmpty())
        m_model.setDevices({});
    if (!m_hasAsked)
        m_empty->setText(tr("Refresh the list to see the attached devices. It starts adb's server, which "
                            "stays when the window closes."));
    else if (fault.isEmpty())
        m_empty->setText(tr("No device is attached. Connect one by USB, unlock it, switch USB debugging "
                            "on in its developer options, and refresh the list."));
    else
        m_empty->setText(fault);
    m_stack->setCurrentWidget(m_model.devices().isEmpty() ? static_cast<QWidget*>(m_empty) : m_table);
    showControls();
}

void DevicesPage::showControls()
{
    const bool isFree = !m_work.isAtWork() && !m_isStopping;
    m_install->setEnabled(isFree);
    m_uninstall->setEnabled(isFree);
    m_refresh->setEnabled(!m_lister.isAsking());
    m_busy->setVisible(m_work.isAtWork());
}

void DevicesPage::tell(const QString& text)
{
    m_banner->setText(text);
}

void DevicesPage::showChannels()
{
    const QVariant chosen = m_channel->currentData();
    m_channel->clear();
    m_channel->addItem(m_document.isOpen() ? tr("Choose a channel") : tr("No job is open"));
    for (int row = 0; row < m_document.channelCount(); ++row)
        m_channel->addItem(m_document.nameOf(row), m_document.folderOf(row));
    m_channel->setCurrentIndex(chosen.isNull() ? 0 : qMax(0, m_channel->findData(chosen)));
    m_channel->setEnabled(m_document.isOpen());
}

void DevicesPage::browse()
{
    auto* const dialog = new QFileDialog(this, tr("Choose an APK"), QFileInfo(m_apk->text()).path(),
                                         tr("Android packages (*.apk)"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, m_apk, &QLineEdit::setText);
    keep(dialog);
}

// Questions go with their answers; only one is open at a time.
void DevicesPage::keep(QDialog* dialog)
{
    delete m_question;
    m_question = dialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

QString DevicesPage::selectedSerial() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    return rows.isEmpty() ? QString() : m_model.devices().at(rows.constFirst().row()).serial;
}

QString DevicesPage::faultOfApk() const
{
    const QString path = m_apk->text();
    if (path.isEmpty())
        return tr("Choose an APK first.");
    if (!QFileInfo(path).isFile())
        return tr("There is no file %1. Build its channel, or choose another APK.").arg(path);
    // The tools' command lines are split at quotation marks.
    if (QFileInfo(path).absoluteFilePath().contains(QLatin1Char('"')))
        return tr("A path with a quotation mark cannot be used. Rename %1.").arg(path);
    return {};
}

void DevicesPage::begin(bool install)
{
    const QString fault = faultOfApk();
    tell(fault);
    if (!fault.isEmpty())
        return;
    m_task.apk = QFileInfo(m_apk->text()).absoluteFilePath();
    m_task.install = install;
    const QStringList ready = readySerials(m_model.devices());
    const QString selected = selectedSerial();
    const auto device = std::find_if(m_model.devices().cbegin(), m_model.devices().cend(),
                                     [&](const Device& one) { return one.serial == selected; });
    if (device != m_model.devices().cend() && !device->isReady())
        tell(tr("%1 is not ready. %2").arg(selected, DeviceList::advice(*device)));
    else if (!m_hasAsked)
        tell(tr("Refresh the list of devices first."));
    else if (ready.isEmpty())
        tell(tr("No device is ready. Connect one, unlock it, allow debugging, and refresh the list."));
    else if (!selected.isEmpty() || ready.size() == 1)
        readPackage(selected.isEmpty() ? ready.constFirst() : selected);
    else
        chooseDevice(ready);
}

void DevicesPage::chooseDevice(const QStringList& ready)
{
    auto* const dialog = new QInputDialog(this);
    dialog->setObjectName(QStringLiteral("chooseDevice"));
    dialog->setWindowTitle(tr("Several devices are ready"));
    dialog->setLabelText(tr("&Device:"));
    dialog->setComboBoxItems(ready);
    connect(dialog, &QInputDialog::textValueSelected, this, &DevicesPage::readPackage);
    keep(dialog);
}

void DevicesPage::readPackage(const QString& serial)
{
    // It would end the word that the command line has for the serial.
    if (serial.contains(QLatin1Char('"'))) {
        tell(tr("A serial with a quotation mark cannot be used. Choose another device than %1.").arg(serial));
        return;
    }
    m_task.serial = serial;
    m_isReading = true;
    m_work.readPackage(m_task.apk);
    tell(workAtHand());
    showControls();
    Q_EMIT workChanged();
}

void DevicesPage::askBefore(const QString& package)
{
    auto* const question =
        new QMessageBox(QMessageBox::Warning, QString(), QString(), QMessageBox::Cancel, this);
    question->setObjectName(QStringLiteral("deviceQuestion"));
    question->setTextFormat(Qt::PlainText);
    question->setText(
        m_task.install ? tr("Remove %1 and its data from %2 before the install?").arg(package, m_task.serial)
                       : tr("Remove %1 and its data from %2?").arg(package, m_task.serial));
    question->setInformativeText(
        m_task.install
            ? tr("The installed package goes first, with all its data, even if the device then refuses %1.")
                  .arg(QFileInfo(m_task.apk).fileName())
            : tr("There is no way back."));
    QAbstractButton* const remove = question->addButton(
        m_task.install ? tr("Remove and &install") : tr("&Remove"), QMessageBox::DestructiveRole);
    question->setDefaultButton(QMessageBox::Cancel);
    connect(question, &QMessageBox::buttonClicked, this, [this, remove](const QAbstractButton* button) {
        if (button == remove)
            beginTask();
    });
    keep(question);
}

void DevicesPage::beginTask()
{
    m_work.begin(m_task);
    tell(workAtHand());
    showControls();
    Q_EMIT workChanged();
}
