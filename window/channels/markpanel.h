// SPDX-License-Identifier: MIT
#ifndef MARKPANEL_H
#define MARKPANEL_H

#include "window/channels/jobdocument.h"
#include "window/channels/markpictures.h"

#include <QWidget>

class MarkPreview;
QT_BEGIN_NAMESPACE
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QSpinBox;
QT_END_NAMESPACE

/** The mark of the chosen channels: which one, in which corner, and where; an edit holds for all of them. */
class MarkPanel : public QWidget {
    Q_OBJECT

public:
    /** @param document outlives the panel */
    explicit MarkPanel(JobDocument& document, QWidget* parent = nullptr);

    /** The channels; what is shown is the first one's. */
    void setRows(const QVector<int>& rows);
    /** The pictures may have changed. */
    void readPictures();

protected:
    void changeEvent(QEvent* event) override;

private:
    void setTexts();
    void connectFields();
    void layOut();
    void refresh();
    void showPlace(const MarkPlace& place);
    void showPictures();
    void showMarks();
    void choose(const MarkPlace& place, JobDocument::Step step);
    QString mark() const;

    JobDocument& m_document;
    QVector<int> m_rows;
    MarkPictures m_pictures;
    QStringList m_names; // of the marks that are offered
    QStringList m_shown; // master, marks and mark of the pictures
    bool m_isReading = false;
    bool m_isStale = false; // while they are read
    QLabel* m_title;
    MarkPreview* m_preview;
    QLabel* m_fault;
    QFormLayout* m_form;
    QComboBox* m_mark;
    QComboBox* m_corner;
    QSpinBox* m_left;
    QSpinBox* m_top;
    QCheckBox* m_flush;
    QPushButton* m_defaults;
};

#endif
