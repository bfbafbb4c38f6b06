#include "support/Process.h"

#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <stdexcept>

#include "support/TempDir.h"

namespace qel::test {

namespace {

std::wstring wide(const std::string& text) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), needed);
    return result;
}

// One word as the C run-time library takes a command line apart: backslashes count only in front of
// a quote.
void appendQuoted(std::wstring& line, const std::wstring& word) {
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t each : word) {
        if (each == L'\\') {
            ++backslashes;
            continue;
        }
        line.append(each == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        backslashes = 0;
        line += each;
    }
    line.append(2 * backslashes, L'\\');
    line += L'"';
}

HANDLE openInherited(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The whole environment block with the additions in it, each entry ended by a NUL, all by another.
std::wstring environmentBlock(const std::map<std::string, std::string>& additions) {
    const auto nameOf = [](const std::wstring& entry) {
        // The hidden "=C:=..." entries start with the sign that ends the others' names.
        std::wstring name = entry.substr(0, entry.find(L'=', 1));
        std::transform(name.begin(), name.end(), name.begin(),
                       [](wchar_t each) { return static_cast<wchar_t>(std::towupper(each)); });
        return name;
    };
    std::map<std::wstring, std::wstring> entries;
    wchar_t* mine = GetEnvironmentStringsW();
    for (const wchar_t* at = mine; at != nullptr && *at != L'\0'; at += wcslen(at) + 1)
        entries[nameOf(at)] = at;
    if (mine != nullptr) FreeEnvironmentStringsW(mine);
    for (const auto& [name, value] : additions) {
        const std::wstring entry = wide(name + "=" + value);
        entries[nameOf(entry)] = entry;
    }
    std::wstring block;
    for (const auto& [name, entry] : entries) block += entry + L'\0';
    return block + L'\0';
}

}  // namespace

ProcessResult runProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options) {
    const TempDir files;
    const std::string in = files.file("in");
    const std::string out = options.outputTo.empty() ? files.file("out") : options.outputTo;
    const std::string err = files.file("err");
    writeFile(in, options.input);

    std::wstring path = wide(program);
    std::replace(path.begin(), path.end(), L'/', L'\\');
    std::wstring line;
    appendQuoted(line, path);
    for (const std::string& argument : arguments) {
        line += L' ';
        appendQuoted(line, wide(argument));
    }
    std::wstring environment = environmentBlock(options.environment);

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = openInherited(in, GENERIC_READ, OPEN_EXISTING);
    startup.hStdOutput = options.closeOutput ? INVALID_HANDLE_VALUE
                                             : openInherited(out, GENERIC_WRITE, CREATE_ALWAYS);
    startup.hStdError = openInherited(err, GENERIC_WRITE, CREATE_ALWAYS);
    PROCESS_INFORMATION process{};
    const std::wstring directory = wide(options.directory);
    // Wine now and then fails to start a process, once in some thousand times, with an error that
    // Windows does not give here; the next attempt succeeds.
    BOOL started = FALSE;
    DWORD error = ERROR_INTERNAL_ERROR;
    for (int attempt = 0; started == 0 && error == ERROR_INTERNAL_ERROR && attempt < 5; ++attempt) {
        started =
            CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE,
                           CREATE_UNICODE_ENVIRONMENT, environment.data(),
                           directory.empty() ? nullptr : directory.c_str(), &startup, &process);
        error = GetLastError();
    }
    for (const HANDLE each : {startup.hStdInput, startup.hStdOutput, startup.hStdError})
        if (each != INVALID_HANDLE_VALUE) CloseHandle(each);
    if (started == 0)
        throw std::runtime_error("cannot start " + program + ": error " + std::to_string(error));
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);

    ProcessResult result;
    result.exitCode = static_cast<int>(code);
    if (options.outputTo.empty() && !options.closeOutput) result.out = readFile(out);
    result.err = readFile(err);
    return result;
}

}  // namespace qel::test
