// SPDX-License-Identifier: MIT
#include "window/channels/markpanel.h"

#include "window/background.h"
#include "window/channels/markpreview.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

constexpr int mostPixels = 99999;

QLabel* labelOf(QFormLayout* form, QWidget* field)
{
    return static_cast<QLabel*>(form->labelForField(field));
}

} // namespace

MarkPanel::MarkPanel(JobDocument& document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_title(new QLabel)
    , m_preview(new MarkPreview)
    , m_fault(new QLabel)
    , m_form(new QFormLayout)
    , m_mark(new QComboBox)
    , m_corner(new QComboBox)
    , m_left(new QSpinBox)
    , m_top(new QSpinBox)
    , m_flush(new QCheckBox)
    , m_defaults(new QPushButton)
{
    m_preview->setObjectName(QStringLiteral("markPreview"));
    m_fault->setObjectName(QStringLiteral("markFault"));
    m_mark->setObjectName(QStringLiteral("mark"));
    m_corner->setObjectName(QStringLiteral("corner"));
    m_left->setObjectName(QStringLiteral("left"));
    m_top->setObjectName(QStringLiteral("top"));
    m_flush->setObjectName(QStringLiteral("flush"));
    m_defaults->setObjectName(QStringLiteral("defaultPlace"));
    layOut();
    connectFields();
    setTexts();
    refresh();
}

void MarkPanel::layOut()
{
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_title);
    column->addWidget(m_preview, 1);
    column->addWidget(m_fault);
    column->addLayout(m_form);
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_title->setTextFormat(Qt::PlainText);
    m_fault->setTextFormat(Qt::PlainText);
    m_fault->setWordWrap(true);
    for (QSpinBox* const pixels : {m_left, m_top}) {
        pixels->setRange(-mostPixels, mostPixels);
        pixels->setKeyboardTracking(false);
    }
    m_mark->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_mark->setMinimumContentsLength(12);
    for (QWidget* const field : {static_cast<QWidget*>(m_mark), static_cast<QWidget*>(m_corner),
                                 static_cast<QWidget*>(m_left), static_cast<QWidget*>(m_top)}) {
        auto* const label = new QLabel;
        label->setBuddy(field);
        m_form->addRow(label, field);
    }
    m_form->addRow(m_flush);
    m_form->addRow(m_defaults);
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (int corner = 0; corner < 4; ++corner)
        m_corner->addItem(QString());
}

void MarkPanel::connectFields()
{
    connect(&m_document, &JobDocument::channelsChanged, this, &MarkPanel::refresh);
    connect(m_preview, &MarkPreview::moved, this, &MarkPanel::showPlace);
    connect(m_preview, &MarkPreview::chosen, this, [this](const MarkPlace& place, bool isContinued) {
        choose(place, isContinued ? JobDocument::Continued : JobDocument::Whole);
    });
    connect(m_mark, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { m_document.setMark(m_rows, m_mark->itemData(index).toString()); });
    connect(m_corner, QOverload<int>::of(&QComboBox::activated), this, [this](int corner) {
        MarkPlace place;
        place.corner = corner;
        choose(place, JobDocument::Whole);
    });
    const auto changed = QOverload<int>::of(&QSpinBox::valueChanged);
    connect(m_left, changed, this, [this](int left) {
        MarkPlace place = m_preview->place();
        place.x = left;
        choose(place, JobDocument::Continued);
    });
    connect(m_top, changed, this, [this](int top) {
        MarkPlace place = m_preview->place();
        place.y = -top; // the job counts heights
        choose(place, JobDocument::Continued);
    });
    connect(m_flush, &QCheckBox::clicked, this, [this](bool isFlush) {
        MarkPlace place;
        place.corner = m_preview->place().corner;
        if (!isFlush) {
            place.x = m_left->value();
            place.y = -m_top->value();
        }
        choose(place, JobDocument::Whole);
    });
    connect(m_defaults, &QPushButton::clicked, this, [this] { m_document.removePlace(m_rows); });
}

void MarkPanel::setTexts()
{
    m_preview->setAccessibleName(tr("Mark on the icon"));
    m_preview->setToolTip(tr("Drag the mark, or move it with the arrow keys; with Shift by ten pixels."));
    labelOf(m_form, m_mark)->setText(tr("&Mark:"));
    labelOf(m_form, m_corner)->setText(tr("C&orner:"));
    labelOf(m_form, m_left)->setText(tr("From the &left:"));
    labelOf(m_form, m_top)->setText(tr("From the &top:"));
    m_left->setSuffix(tr(" px"));
    m_top->setSuffix(tr(" px"));
    m_flush->setText(tr("Flus&h in the corner"));
    m_defaults->setText(tr("As the job's &defaults say"));
    m_corner->setItemText(0, tr("Left top"));
    m_corner->setItemText(1, tr("Left bottom"));
    m_corner->setItemText(2, tr("Right top"));
    m_corner->setItemText(3, tr("Right bottom"));
    m_left->setToolTip(tr("The job file calls it \"x\"."));
    m_top->setToolTip(tr("The job file calls it \"y\", and counts upwards: 20 pixels are -20 there."));
}

void MarkPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) {
        setTexts();
        refresh();
    }
    QWidget::changeEvent(event);
}

QString MarkPanel::mark() const
{
    return m_rows.isEmpty() ? QString() : m_document.markOf(m_rows.first());
}

void MarkPanel::setRows(const QVector<int>& rows)
{
    m_rows = rows;
    refresh();
}

void MarkPanel::choose(const MarkPlace& place, JobDocument::Step step)
{
    m_document.setPlace(m_rows, place, step);
    refresh();
}

void MarkPanel::refresh()
{
    const bool isChosen = !m_rows.isEmpty() && m_rows.last() < m_document.channelCount();
    setEnabled(isChosen);
    if (!isChosen) {
        m_rows.clear();
        m_title->setText(tr("Choose a channel to see its icon."));
    } else if (m_rows.size() == 1) {
        m_title->setText(m_document.nameOf(m_rows.first()));
    } else {
        m_title->setText(
            tr("%1 channels, shown: %2").arg(m_rows.size()).arg(m_document.nameOf(m_rows.first())));
    }
    const QStringList wanted{m_document.masterPath(), m_document.marksPath(), mark()};
    if (m_shown != wanted)
        readPictures();
    showPictures();
    m_defaults->setEnabled(isChosen && m_document.hasOwnPlace(m_rows.first()));
}

void MarkPanel::readPictures()
{
    m_shown = QStringList{m_document.masterPath(), m_document.marksPath(), mark()};
    m_isStale = m_isReading;
    if (m_isStale || !m_document.isOpen())
        return;
    m_isReading = true;
    inBackground(
        this, [wanted = m_shown] { return MarkPictures::read(wanted.at(0), wanted.at(1), wanted.at(2)); },
        [this](const MarkPictures& read) {
            m_isReading = false;
            if (m_isStale) {
                readPictures();
                return;
            }
            m_pictures = read;
            m_preview->setPictures(m_pictures);
            showPictures();
        });
}

void MarkPanel::showPictures()
{
    m_fault->setText(m_pictures.fault);
    m_fault->setVisible(m_document.isOpen() && !m_pictures.fault.isEmpty());
    showMarks();
    const MarkPlace place = m_rows.isEmpty() ? MarkPlace() : m_document.placeOf(m_rows.first());
    m_preview->setPlace(place);
    showPlace(place);
}

void MarkPanel::showMarks()
{
    QStringList names = m_pictures.names;
    names.prepend({});
    if (!names.contains(mark()))
        names.append(mark()); // the job names one that is not there
    m_mark->setItemText(0, tr("No mark"));
    if (names != m_names) {
        m_names = names;
        m_mark->clear();
        m_mark->addItem(tr("No mark"), QString());
        for (const QString& name : names.mid(1))
            m_mark->addItem(name, name);
    }
    m_mark->setCurrentIndex(names.indexOf(mark()));
}

void MarkPanel::showPlace(const MarkPlace& place)
{
    const QSignalBlocker noLeft(m_left);
    const QSignalBlocker noTop(m_top);
    const QPoint at = m_preview->markPosition();
    m_corner->setCurrentIndex(place.corner);
    m_left->setValue(at.x());
    m_top->setValue(at.y());
    m_flush->setChecked(!place.x && !place.y);
    const bool isMarked = !mark().isEmpty();
    for (QWidget* const field : {static_cast<QWidget*>(m_corner), static_cast<QWidget*>(m_left),
                                 static_cast<QWidget*>(m_top), static_cast<QWidget*>(m_flush)})
        field->setEnabled(isMarked);
}
