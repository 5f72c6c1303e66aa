// SPDX-License-Identifier: MIT
#ifndef DEVICESPAGE_H
#define DEVICESPAGE_H

#include "window/devices/devicelister.h"
#include "window/devices/devicemodel.h"
#include "window/devices/devicework.h"
#include "window/page.h"

#include <QPointer>

class JobDocument;
QT_BEGIN_NAMESPACE
class QComboBox;
class QDialog;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTableView;
QT_END_NAMESPACE

/** The attached devices, and an APK that is installed on one of them or whose package is removed from it. */
class DevicesPage : public Page {
    Q_OBJECT

public:
    explicit DevicesPage(const JobDocument& document, QWidget* parent = nullptr);

    QString title() const override;
    QString workAtHand() const override;
    void stopWork() override;

protected:
    void setTexts() override;
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void layOut();
    void connectParts();
    void showDevices(const QVector<Device>& devices);
    void showList(const QString& fault);
    void ask();
    void showControls();
    void tell(const QString& text);
    void showChannels();
    void browse();
    void begin(bool install);
    QString faultOfApk() const;
    QString selectedSerial() const;
    void chooseDevice(const QStringList& ready);
    void readPackage(const QString& serial);
    void askBefore(const QString& package);
    void beginTask();
    void keep(QDialog* dialog);

    const JobDocument& m_document;
    DeviceModel m_model;
    DeviceLister m_lister;
    DeviceWork m_work;
    DeviceWork::Task m_task;
    QString m_fault; ///< why there is no list
    QPointer<QDialog> m_question;
    bool m_hasAsked = false; ///< for the list, which starts adb's server
    bool m_isReading = false; ///< the name of an APK's package, before anything is asked
    bool m_isStopping = false; ///< nothing more begins, until the work at hand has ended
    QLabel* m_listLabel;
    QPushButton* m_refresh;
    QStackedWidget* m_stack;
    QTableView* m_table;
    QLabel* m_empty;
    QLabel* m_apkLabel;
    QLineEdit* m_apk;
    QPushButton* m_browse;
    QLabel* m_channelLabel;
    QComboBox* m_channel; ///< of the open job
    QPushButton* m_install;
    QPushButton* m_uninstall;
    QProgressBar* m_busy;
    QLabel* m_banner;
};

#endif
