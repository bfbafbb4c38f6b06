// Prints what kcalendarcore reads of calendar files, .ics and .vcs: one JSON object a file, in the
// form that compare.py explains. Usage: read_kcalendar MOST FILE...
#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>
#include <KCalendarCore/VCalFormat>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>
#include <cstdio>

namespace {

using namespace KCalendarCore;

// The series that have no end are looked at up to here.
constexpr int kLastYear = 2400;

QStringList warnings;

QString dayText(const QDate& day) {
    return day.toString(QStringLiteral("yyyyMMdd"));
}

QString textOf(const QDateTime& time, bool isDate) {
    if (!time.isValid()) return {};
    if (isDate) return dayText(time.date());
    const QString form = QStringLiteral("yyyyMMddTHHmmss");
    return time.timeSpec() == Qt::LocalTime ? time.toString(form)
                                            : time.toUTC().toString(form) + QLatin1Char('Z');
}

QJsonArray datesOf(const Incidence& entry, int most) {
    QJsonArray list;
    if (!entry.dtStart().isValid()) return list;
    if (!entry.recurs()) return {textOf(entry.dtStart(), entry.allDay())};
    // The dates of a local series come in the zone of the computer.
    const bool local = entry.dtStart().timeSpec() == Qt::LocalTime;
    const Recurrence* recurrence = entry.recurrence();
    QDateTime time = entry.dtStart();
    if (!recurrence->recursAt(time)) time = recurrence->getNextDateTime(time);
    while (time.isValid() && time.date().year() <= kLastYear && list.size() < most) {
        list.append(textOf(local ? time.toLocalTime() : time, entry.allDay()));
        time = recurrence->getNextDateTime(time);
    }
    return list;
}

QJsonArray alarmsOf(const Incidence& entry) {
    QJsonArray list;
    for (const Alarm::Ptr& alarm : entry.alarms()) {
        const Duration offset = alarm->hasEndOffset() ? alarm->endOffset() : alarm->startOffset();
        list.append(alarm->hasTime() ? textOf(alarm->time(), false)
                                     : QString::number(offset.asSeconds()));
    }
    return list;
}

// Here an all-day event ends on its last day, in the file on the one after.
QString endOf(const Event& event) {
    return event.allDay() ? dayText(event.dtEnd().date().addDays(1)) : textOf(event.dtEnd(), false);
}

QJsonObject objectOf(const Incidence::Ptr& entry, int most) {
    QJsonObject object{{"kind", entry->type() == Incidence::TypeEvent  ? "VEVENT"
                                : entry->type() == Incidence::TypeTodo ? "VTODO"
                                                                       : "VJOURNAL"},
                       {"uid", entry->uid()},
                       {"recurrence-id", textOf(entry->recurrenceId(), entry->allDay())},
                       {"summary", entry->summary()},
                       {"description", entry->description()},
                       {"location", entry->location()},
                       {"start", textOf(entry->dtStart(), entry->allDay())},
                       {"end", ""},
                       {"due", ""},
                       {"completed", ""},
                       {"percent", 0},
                       {"alarms", alarmsOf(*entry)},
                       {"dates", datesOf(*entry, most)}};
    if (const auto event = entry.dynamicCast<Event>()) object["end"] = endOf(*event);
    if (const auto todo = entry.dynamicCast<Todo>()) {
        object["due"] = textOf(todo->dtDue(true), todo->allDay());
        if (todo->hasCompletedDate()) object["completed"] = textOf(todo->completed(), false);
        object["percent"] = todo->percentComplete();
    }
    return object;
}

QJsonObject readFile(const QString& name, int most) {
    warnings.clear();
    const MemoryCalendar::Ptr calendar(new MemoryCalendar(QTimeZone::utc()));
    QFile file(name);
    file.open(QIODevice::ReadOnly);
    ICalFormat icalendar;
    VCalFormat vcalendar;
    const bool isVCalendar = name.endsWith(QStringLiteral(".vcs"));
    CalFormat& format = isVCalendar ? static_cast<CalFormat&>(vcalendar) : icalendar;
    const bool read = format.fromRawString(calendar, file.readAll());
    QJsonArray entries;
    for (const Incidence::Ptr& entry : calendar->rawIncidences())
        entries.append(objectOf(entry, most));
    if (!read) warnings.append(QStringLiteral("not read"));
    return {{"file", name}, {"errors", QJsonArray::fromStringList(warnings)}, {"entries", entries}};
}

}  // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg) warnings.append(text);
    });
    const QStringList all = QCoreApplication::arguments();
    for (int each = 2; each < all.size(); ++each)
        std::puts(
            QJsonDocument(readFile(all[each], all[1].toInt())).toJson(QJsonDocument::Compact));
}
