# PowerShell completion for qelutil: the line
#     . FOLDER\qelutil.ps1
# in the file that $PROFILE names loads it.
# Written by qelutil_pages from the program's commands; `./dev pages` renews it.

Register-ArgumentCompleter -Native -CommandName 'qelutil', 'qelutil.exe' -ScriptBlock {
    param($current, $line, $cursor)

    # Of each command: its options, the values that an option takes, and the words that follow it. What
    # follows a bar explains the word before it; the program is asked for its zones.
    $commands = @{
        '' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--version|Display program version information and exit'
                '--color|when messages and month grids are coloured'
                '--config|the file of your own defaults, with a section for each command'
            )
            Values = @{
                '--color' = @('auto', 'always', 'never')
            }
            Words = @(
                'convert|Converts vCalendar 1.0 files to iCalendar, and iCalendar to vCalendar 1.0'
                'show|Shows what is in a calendar, by days'
                'rule|Explain a recurrence rule'
                'expand|List the dates of a rule inside a range'
                'date|Day numbers, date-time texts and durations'
                'zone|Time zones'
                'encode|Encode as Base64, quoted-printable, MD5 digest or enciphered code'
                'decode|Decode Base64, quoted-printable or enciphered code'
                'charset|Text between UTF-8 and the character sets of phones'
                'field|The fields of calendars, contacts, notes, mail'
                'status|The names of result statuses and operations'
                'stream|Show the values of a serialised data stream'
                'log|The trace log'
                'schema|Prints the JSON Schema of what commands print with --json'
            )
        }
        'convert' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--to|ics for iCalendar, vcs for vCalendar 1.0'
                '-o|the file to write, whole or not at all'
                '--output|the file to write, whole or not at all'
                '-d|the folder to write to, a file for each file'
                '--output-dir|the folder to write to, a file for each file'
                '--split|write calendars of at most so many bytes, FILE-1.ics and so on'
                '--beside|write each result beside its file, under a name that is free, with a report'
                '--zone|the time zone of times that name none, as Europe/Berlin'
                '--charset|the character set of text that names none, as Shift_JIS or windows-1251'
                '--count-means|what #10 means in a phone''s rule with several days in a week, month or year'
                '--only|take entries of these kinds alone, with commas between several'
                '--distinct-uids|give an entry another UID when an earlier one with other content has it'
                '--overwrite|replace files that the folder of --output-dir already has'
                '--strict|treat warnings and losses as errors'
                '-n|write no calendar, and show what would become of each file'
                '--dry-run|write no calendar, and show what would become of each file'
                '--report|a page that shows for every entry what was converted, what changed and what could not be carried over'
                '--open|show the report when it is written'
                '--threads|how many threads work at most, on several files or on one large file'
                '--json|print what became of each file as JSON'
                '-v|also report how irregular input was read, and show every message'
                '--verbose|also report how irregular input was read, and show every message'
            )
            Values = @{
                '--to' = @('ics', 'vcs')
                '--zone' = @('*zones*')
                '--count-means' = @('dates', 'periods')
                '--only' = @('events', 'todos', 'notes')
            }
            Words = @(
            )
        }
        'show' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--since|the first day, as 2005-06-15, today or yesterday'
                '--through|the last day, a year after the first when it is missing'
                '--next|the next so many from today on, or from --since (1 to 100000)'
                '--search|only what has this in its title, text, place or categories'
                '--only|only entries of these kinds, with commas between several'
                '--zone|the zone in which times are shown, as Europe/Berlin, and that of times without one'
                '--charset|the character set of text that names none'
                '--calendar|month grids with the days marked'
                '--json|print each entry with its facts as JSON'
            )
            Values = @{
                '--only' = @('events', 'todos', 'notes')
                '--zone' = @('*zones*')
            }
            Words = @(
            )
        }
        'rule' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--start|The date of the series'' first entry, as 2005-06-15, today or tomorrow'
                '--from|The form of TEXT'
                '--count-means|What #10 means in a vCalendar 1.0 rule with several days in a week, month or year'
                '--to|Print the rule in this form and nothing else'
                '--count|How many dates to show (1 to 100000)'
                '--calendar|Show the dates in month grids'
                '--json|Print the facts as JSON'
            )
            Values = @{
                '--from' = @('v10', 'ical', 'positional')
                '--count-means' = @('dates', 'periods')
                '--to' = @('v10', 'ical', 'positional')
            }
            Words = @(
            )
        }
        'expand' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--start|The date of the series'' first entry, as 2005-06-15, today or tomorrow'
                '--from|The form of TEXT'
                '--count-means|What #10 means in a vCalendar 1.0 rule with several days in a week, month or year'
                '--since|The first day shown'
                '--through|The last day shown'
                '--exclude|Dates on which the series does not take place, separated by commas'
                '--count|Show no more dates than this (1 to 219145)'
                '--record|The dates that the rule''s repeat record gives'
                '--calendar|Show the dates in month grids'
                '--json|Print the facts as JSON'
            )
            Values = @{
                '--from' = @('v10', 'ical', 'positional')
                '--count-means' = @('dates', 'periods')
            }
            Words = @(
            )
        }
        'date' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--from|treat every VALUE as this'
                '--add|add this duration first'
                '--until|show the duration from VALUE to this date'
                '--json|print the facts as JSON'
            )
            Values = @{
                '--from' = @('date', 'day', 'seconds', 'unix', 'duration', 'length')
            }
            Words = @(
            )
        }
        'zone' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
            )
            Values = @{
            }
            Words = @(
                'list|List the zones'
                'show|Show the rules of a zone''s changes of offset'
                'convert|Convert times between zones'
                'changes|List the changes of offset in a year'
            )
        }
        'zone list' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--table|only the library''s table, as in 2005'
                '--iana|only the IANA time zone database, as in this year'
                '--json|print the facts as JSON'
            )
            Values = @{
            }
            Words = @(
            )
        }
        'zone show' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--json|print the facts as JSON'
            )
            Values = @{
            }
            Words = @(
                '*zones*'
            )
        }
        'zone convert' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--from|a name such as Europe/Berlin, which has the clocks of all years'
                '--to|the zone to convert to, in the same way'
                '--json|print the facts as JSON'
            )
            Values = @{
                '--from' = @('*zones*')
                '--to' = @('*zones*')
            }
            Words = @(
            )
        }
        'zone changes' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--year|the year'
                '--json|print the facts as JSON'
            )
            Values = @{
            }
            Words = @(
                '*zones*'
            )
        }
        'encode' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '-t|the text itself, instead of a file'
                '--text|the text itself, instead of a file'
                '-o|where to write'
                '--output|where to write'
                '--wrap|base64'
                '--value|qp'
                '--column|qp --value'
            )
            Values = @{
            }
            Words = @(
                'base64|'
                'qp|'
                'md5|'
                'cipher|'
            )
        }
        'decode' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '-t|the text itself, instead of a file'
                '--text|the text itself, instead of a file'
                '-o|where to write'
                '--output|where to write'
            )
            Values = @{
            }
            Words = @(
                'base64|'
                'qp|'
                'cipher|'
            )
        }
        'charset' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '-t|the text itself, instead of a file'
                '--text|the text itself, instead of a file'
                '-o|where to write'
                '--output|where to write'
                '--from|the set that the text is in'
                '--to|the set to convert it to'
                '--list|list the sets'
                '--json|with --list'
            )
            Values = @{
            }
            Words = @(
            )
        }
        'field' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--type|only this record type'
                '--list|list all fields, or those of --type'
                '--json|print the facts as JSON'
            )
            Values = @{
                '--type' = @('event', 'todo', 'contact', 'note', 'email')
            }
            Words = @(
            )
        }
        'status' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--list|list them all'
                '--json|print the facts as JSON'
            )
            Values = @{
            }
            Words = @(
            )
        }
        'stream' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '-t|the text itself, instead of a file'
                '--text|the text itself, instead of a file'
                '--types|the types of the first values, in order'
                '--json|print the facts as JSON'
            )
            Values = @{
            }
            Words = @(
            )
        }
        'log' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
                '--errors|only the errors'
                '--thread|only what this thread wrote'
                '--since|from this time on'
                '--through|up to and with this time'
                '--search|only lines with this text'
                '--summary|the first and the last line, errors by code, gaps, starts, and the options'
                '-f|go on with what is written later'
                '--follow|go on with what is written later'
                '--set|set an option'
                '--tail|only the last lines'
                '--json|print the facts as JSON'
            )
            Values = @{
                '--set' = @('MaxFileSize=', 'MaxBackupCount=', 'KeepLogFiles=', 'VTraceVerbosity=', 'TracingOptions=', 'LogManagerLevel=', 'LogManagerDetail=', 'RetroactiveTracingBufferSize=', 'SeparateLogForEachProcess=', 'KeepLogFileOpen=')
            }
            Words = @(
            )
        }
        'schema' = @{
            Options = @(
                '-h|Print this help message and exit'
                '--help|Print this help message and exit'
            )
            Values = @{
            }
            Words = @(
            )
        }
    }

    $command = ''
    $previous = ''
    foreach ($element in $line.CommandElements | Select-Object -Skip 1) {
        if ($element.Extent.EndOffset -ge $cursor) { break }
        $previous = $element.Extent.Text
        if ($commands.ContainsKey("$command $previous".Trim())) {
            $command = "$command $previous".Trim()
        }
    }

    if (-not $command -and $previous -and -not $previous.StartsWith('-')) { $command = 'convert' }

    $known = $commands[$command]
    $option = ''
    if ($current -match '^(--[a-z-]+)=(.*)$') {
        # "--to=ics" is one word.
        $option = $Matches[1] + '='
        $previous = $Matches[1]
        $current = $Matches[2]
    }
    if ($known.Values.ContainsKey($previous)) { $offered = $known.Values[$previous] }
    elseif ($option) { $offered = @() }
    elseif ($current.StartsWith('-')) { $offered = $known.Options }
    else { $offered = $known.Words }

    if ('*zones*' -in $offered) {
        $offered = & $line.CommandElements[0].Extent.Text zone list --iana 2>$null |
            ForEach-Object { ($_ -split ' ')[-1] }
    }
    foreach ($each in $offered) {
        $word, $explanation = $each -split '\|', 2
        if (-not $word.StartsWith($current, 'Ordinal')) { continue }
        if (-not $explanation) { $explanation = $word }
        [System.Management.Automation.CompletionResult]::new("$option$word", $word, 'ParameterValue', $explanation)
    }
}
