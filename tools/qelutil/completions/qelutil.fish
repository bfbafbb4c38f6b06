# fish completion for qelutil
# Written by qelutil_pages from the program's commands; `./dev pages` renews it.

# True when the words of the command line so far begin with these ones; options do not count.
function __qelutil_at
    set -l words (string match -v -r '^(-.*|auto|always|never)$' -- (commandline -opc))
    set -e words[1]
    test (count $words) -ge (count $argv); or return 1
    for at in (seq (count $argv))
        test $words[$at] = $argv[$at]; or return 1
    end
end

# True when nothing but these words stands there.
function __qelutil_only
    set -l words (string match -v -r '^(-.*|auto|always|never)$' -- (commandline -opc))
    test (count $words) -eq (math 1 + (count $argv)); and __qelutil_at $argv
end

function __qelutil_zones
    qelutil zone list --iana 2>/dev/null | string replace -r '.* ' ''
end

# True when files are converted: the command says so, or a file stands in its place.
function __qelutil_converts
    set -l words (string match -v -r '^(-.*|auto|always|never)$' -- (commandline -opc))
    test (count $words) -ge 2; or return 1
    test $words[2] = convert; or not contains -- $words[2] convert show rule expand date zone encode decode charset field status stream log schema
end

complete -c qelutil -f
complete -c qelutil -n '__qelutil_only' -F
complete -c qelutil -n '__qelutil_at' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at' -l version -d 'Display program version information and exit'
complete -c qelutil -n '__qelutil_at' -l color -x -a 'auto always never' -d 'when messages and month grids are coloured'
complete -c qelutil -n '__qelutil_at' -l config -r -F -d 'the file of your own defaults, with a section for each command'
complete -c qelutil -n '__qelutil_only' -a convert -d 'Converts vCalendar 1.0 files to iCalendar, and iCalendar to vCalendar 1.0'
complete -c qelutil -n '__qelutil_only' -a show -d 'Shows what is in a calendar, by days'
complete -c qelutil -n '__qelutil_only' -a rule -d 'Explain a recurrence rule'
complete -c qelutil -n '__qelutil_only' -a expand -d 'List the dates of a rule inside a range'
complete -c qelutil -n '__qelutil_only' -a date -d 'Day numbers, date-time texts and durations'
complete -c qelutil -n '__qelutil_only' -a zone -d 'Time zones: their list, rules, conversions, changes of a year'
complete -c qelutil -n '__qelutil_only' -a encode -d 'Encode as Base64, quoted-printable, MD5 digest or enciphered code'
complete -c qelutil -n '__qelutil_only' -a decode -d 'Decode Base64, quoted-printable or enciphered code'
complete -c qelutil -n '__qelutil_only' -a charset -d 'Text between UTF-8 and the character sets of phones'
complete -c qelutil -n '__qelutil_only' -a field -d 'The fields of calendars, contacts, notes, mail'
complete -c qelutil -n '__qelutil_only' -a status -d 'The names of result statuses and operations'
complete -c qelutil -n '__qelutil_only' -a stream -d 'Show the values of a serialised data stream'
complete -c qelutil -n '__qelutil_only' -a log -d 'The trace log: where it is, its options, its last lines; and logs of others'
complete -c qelutil -n '__qelutil_only' -a schema -d 'Prints the JSON Schema of what commands print with --json'

complete -c qelutil -n '__qelutil_converts' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_converts' -F
complete -c qelutil -n '__qelutil_converts' -l to -x -a 'ics vcs' -d 'ics for iCalendar, vcs for vCalendar 1.0'
complete -c qelutil -n '__qelutil_converts' -s o -l output -r -F -d 'the file to write, whole or not at all'
complete -c qelutil -n '__qelutil_converts' -s d -l output-dir -x -a '(__fish_complete_directories)' -d 'the folder to write to, a file for each file'
complete -c qelutil -n '__qelutil_converts' -l split -x -d 'write calendars of at most so many bytes, FILE-1.ics and so on'
complete -c qelutil -n '__qelutil_converts' -l beside -d 'write each result beside its file, under a name that is free, with a report'
complete -c qelutil -n '__qelutil_converts' -l zone -x -a '(__qelutil_zones)' -d 'the time zone of times that name none, as Europe/Berlin'
complete -c qelutil -n '__qelutil_converts' -l charset -x -d 'the character set of text that names none, as Shift_JIS or windows-1251'
complete -c qelutil -n '__qelutil_converts' -l count-means -x -a 'dates periods' -d 'what #10 means in a phone\'s rule with several days in a week, month or year'
complete -c qelutil -n '__qelutil_converts' -l only -x -a 'events todos notes' -d 'take entries of these kinds alone, with commas between several'
complete -c qelutil -n '__qelutil_converts' -l distinct-uids -d 'give an entry another UID when an earlier one with other content has it'
complete -c qelutil -n '__qelutil_converts' -l overwrite -d 'replace files that the folder of --output-dir already has'
complete -c qelutil -n '__qelutil_converts' -l strict -d 'treat warnings and losses as errors'
complete -c qelutil -n '__qelutil_converts' -s n -l dry-run -d 'write no calendar, and show what would become of each file'
complete -c qelutil -n '__qelutil_converts' -l report -r -F -d 'a page that shows for every entry what was converted, what changed and what could not be carried over'
complete -c qelutil -n '__qelutil_converts' -l open -d 'show the report when it is written'
complete -c qelutil -n '__qelutil_converts' -l threads -x -d 'how many threads work at most, on several files or on one large file'
complete -c qelutil -n '__qelutil_converts' -l json -d 'print what became of each file as JSON'
complete -c qelutil -n '__qelutil_converts' -s v -l verbose -d 'also report how irregular input was read, and show every message'

complete -c qelutil -n '__qelutil_at show' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at show' -F
complete -c qelutil -n '__qelutil_at show' -l since -x -d 'the first day, as 2005-06-15, today or yesterday'
complete -c qelutil -n '__qelutil_at show' -l through -x -d 'the last day, a year after the first when it is missing'
complete -c qelutil -n '__qelutil_at show' -l next -x -d 'the next so many from today on, or from --since (1 to 100000)'
complete -c qelutil -n '__qelutil_at show' -l search -x -d 'only what has this in its title, text, place or categories'
complete -c qelutil -n '__qelutil_at show' -l only -x -a 'events todos notes' -d 'only entries of these kinds, with commas between several'
complete -c qelutil -n '__qelutil_at show' -l zone -x -a '(__qelutil_zones)' -d 'the zone in which times are shown, as Europe/Berlin, and that of times without one'
complete -c qelutil -n '__qelutil_at show' -l charset -x -d 'the character set of text that names none'
complete -c qelutil -n '__qelutil_at show' -l calendar -d 'month grids with the days marked'
complete -c qelutil -n '__qelutil_at show' -l json -d 'print each entry with its facts as JSON'

complete -c qelutil -n '__qelutil_at rule' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at rule' -l start -x -d 'The date of the series\' first entry, as 2005-06-15, today or tomorrow'
complete -c qelutil -n '__qelutil_at rule' -l from -x -a 'v10 ical positional' -d 'The form of TEXT'
complete -c qelutil -n '__qelutil_at rule' -l count-means -x -a 'dates periods' -d 'What #10 means in a vCalendar 1.0 rule with several days in a week, month or year'
complete -c qelutil -n '__qelutil_at rule' -l to -x -a 'v10 ical positional' -d 'Print the rule in this form and nothing else'
complete -c qelutil -n '__qelutil_at rule' -l count -x -d 'How many dates to show (1 to 100000)'
complete -c qelutil -n '__qelutil_at rule' -l calendar -d 'Show the dates in month grids'
complete -c qelutil -n '__qelutil_at rule' -l json -d 'Print the facts as JSON'

complete -c qelutil -n '__qelutil_at expand' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at expand' -l start -x -d 'The date of the series\' first entry, as 2005-06-15, today or tomorrow'
complete -c qelutil -n '__qelutil_at expand' -l from -x -a 'v10 ical positional' -d 'The form of TEXT'
complete -c qelutil -n '__qelutil_at expand' -l count-means -x -a 'dates periods' -d 'What #10 means in a vCalendar 1.0 rule with several days in a week, month or year'
complete -c qelutil -n '__qelutil_at expand' -l since -x -d 'The first day shown'
complete -c qelutil -n '__qelutil_at expand' -l through -x -d 'The last day shown'
complete -c qelutil -n '__qelutil_at expand' -l exclude -x -d 'Dates on which the series does not take place, separated by commas'
complete -c qelutil -n '__qelutil_at expand' -l count -x -d 'Show no more dates than this (1 to 219145)'
complete -c qelutil -n '__qelutil_at expand' -l record -d 'The dates that the rule\'s repeat record gives'
complete -c qelutil -n '__qelutil_at expand' -l calendar -d 'Show the dates in month grids'
complete -c qelutil -n '__qelutil_at expand' -l json -d 'Print the facts as JSON'

complete -c qelutil -n '__qelutil_at date' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at date' -l from -x -a 'date day seconds unix duration length' -d 'treat every VALUE as this'
complete -c qelutil -n '__qelutil_at date' -l add -x -d 'add this duration first'
complete -c qelutil -n '__qelutil_at date' -l until -x -d 'show the duration from VALUE to this date'
complete -c qelutil -n '__qelutil_at date' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_only zone' -a list -d 'List the zones: number in the table, standard and summer offset, name'
complete -c qelutil -n '__qelutil_only zone' -a show -d 'Show the rules of a zone\'s changes of offset'
complete -c qelutil -n '__qelutil_only zone' -a convert -d 'Convert times between zones'
complete -c qelutil -n '__qelutil_only zone' -a changes -d 'List the changes of offset in a year'
complete -c qelutil -n '__qelutil_at zone' -s h -l help -d 'Print this help message and exit'

complete -c qelutil -n '__qelutil_at zone list' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at zone list' -l table -d 'only the library\'s table, as in 2005'
complete -c qelutil -n '__qelutil_at zone list' -l iana -d 'only the IANA time zone database, as in this year'
complete -c qelutil -n '__qelutil_at zone list' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at zone show' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at zone show' -a '(__qelutil_zones)'
complete -c qelutil -n '__qelutil_at zone show' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at zone convert' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at zone convert' -l from -x -a '(__qelutil_zones)' -d 'a name such as Europe/Berlin, which has the clocks of all years'
complete -c qelutil -n '__qelutil_at zone convert' -l to -x -a '(__qelutil_zones)' -d 'the zone to convert to, in the same way'
complete -c qelutil -n '__qelutil_at zone convert' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at zone changes' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at zone changes' -a '(__qelutil_zones)'
complete -c qelutil -n '__qelutil_at zone changes' -l year -x -d 'the year'
complete -c qelutil -n '__qelutil_at zone changes' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at encode' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at encode' -a 'base64 qp md5 cipher'
complete -c qelutil -n '__qelutil_at encode' -F
complete -c qelutil -n '__qelutil_at encode' -s t -l text -x -d 'the text itself, instead of a file'
complete -c qelutil -n '__qelutil_at encode' -s o -l output -r -F -d 'where to write'
complete -c qelutil -n '__qelutil_at encode' -l wrap -x -d 'base64'
complete -c qelutil -n '__qelutil_at encode' -l value -d 'qp'
complete -c qelutil -n '__qelutil_at encode' -l column -x -d 'qp --value'

complete -c qelutil -n '__qelutil_at decode' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at decode' -a 'base64 qp cipher'
complete -c qelutil -n '__qelutil_at decode' -F
complete -c qelutil -n '__qelutil_at decode' -s t -l text -x -d 'the text itself, instead of a file'
complete -c qelutil -n '__qelutil_at decode' -s o -l output -r -F -d 'where to write'

complete -c qelutil -n '__qelutil_at charset' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at charset' -F
complete -c qelutil -n '__qelutil_at charset' -s t -l text -x -d 'the text itself, instead of a file'
complete -c qelutil -n '__qelutil_at charset' -s o -l output -r -F -d 'where to write'
complete -c qelutil -n '__qelutil_at charset' -l from -x -d 'the set that the text is in'
complete -c qelutil -n '__qelutil_at charset' -l to -x -d 'the set to convert it to'
complete -c qelutil -n '__qelutil_at charset' -l list -d 'list the sets'
complete -c qelutil -n '__qelutil_at charset' -l json -d 'with --list'

complete -c qelutil -n '__qelutil_at field' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at field' -l type -x -a 'event todo contact note email' -d 'only this record type'
complete -c qelutil -n '__qelutil_at field' -l list -d 'list all fields, or those of --type'
complete -c qelutil -n '__qelutil_at field' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at status' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at status' -l list -d 'list them all'
complete -c qelutil -n '__qelutil_at status' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at stream' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at stream' -F
complete -c qelutil -n '__qelutil_at stream' -s t -l text -x -d 'the text itself, instead of a file'
complete -c qelutil -n '__qelutil_at stream' -l types -x -d 'the types of the first values, in order'
complete -c qelutil -n '__qelutil_at stream' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at log' -s h -l help -d 'Print this help message and exit'
complete -c qelutil -n '__qelutil_at log' -F
complete -c qelutil -n '__qelutil_at log' -l errors -d 'only the errors'
complete -c qelutil -n '__qelutil_at log' -l thread -x -d 'only what this thread wrote'
complete -c qelutil -n '__qelutil_at log' -l since -x -d 'from this time on'
complete -c qelutil -n '__qelutil_at log' -l through -x -d 'up to and with this time'
complete -c qelutil -n '__qelutil_at log' -l search -x -d 'only lines with this text'
complete -c qelutil -n '__qelutil_at log' -l summary -d 'the first and the last line, errors by code, gaps, starts, and the options'
complete -c qelutil -n '__qelutil_at log' -s f -l follow -d 'go on with what is written later'
complete -c qelutil -n '__qelutil_at log' -l set -x -a 'MaxFileSize= MaxBackupCount= KeepLogFiles= VTraceVerbosity= TracingOptions= LogManagerLevel= LogManagerDetail= RetroactiveTracingBufferSize= SeparateLogForEachProcess= KeepLogFileOpen=' -d 'set an option'
complete -c qelutil -n '__qelutil_at log' -l tail -x -d 'only the last lines'
complete -c qelutil -n '__qelutil_at log' -l json -d 'print the facts as JSON'

complete -c qelutil -n '__qelutil_at schema' -s h -l help -d 'Print this help message and exit'
