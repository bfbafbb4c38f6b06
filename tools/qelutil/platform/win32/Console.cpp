#include "platform/Console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h, whose types it uses.
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>

namespace qel::cli::platform {

namespace {

UINT previousOutputPage = 0;

void restoreOutputPage() {
    SetConsoleOutputCP(previousOutputPage);
}

bool isConsole(DWORD which) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(which), &mode) != 0;
}

int columnsOf(DWORD which) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(which), &info) == 0) return 0;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

bool understandsEscapes(DWORD which) {
    constexpr DWORD kVirtualTerminal = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    const HANDLE handle = GetStdHandle(which);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0 &&
           SetConsoleMode(handle, mode | kVirtualTerminal) != 0;
}

std::string toUtf8(const wchar_t* wide) {
    const int needed = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (needed <= 1) return {};
    std::string text(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), needed, nullptr, nullptr);
    text.pop_back();  // the terminator that was asked for with length -1
    return text;
}

}  // namespace

void prepareStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    if (isConsole(STD_OUTPUT_HANDLE) || isConsole(STD_ERROR_HANDLE)) {
        previousOutputPage = GetConsoleOutputCP();
        if (previousOutputPage != 0 && SetConsoleOutputCP(CP_UTF8) != 0)
            std::atexit(restoreOutputPage);
    }
}

std::vector<std::string> arguments(int, char**) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    if (wide == nullptr) return words;
    for (int i = 1; i < count; ++i) words.push_back(toUtf8(wide[i]));
    LocalFree(wide);
    return words;
}

bool inputIsTerminal() {
    return isConsole(STD_INPUT_HANDLE);
}

bool outputIsTerminal() {
    return isConsole(STD_OUTPUT_HANDLE);
}

bool errorIsTerminal() {
    return isConsole(STD_ERROR_HANDLE);
}

int outputColumns() {
    return columnsOf(STD_OUTPUT_HANDLE);
}

int errorColumns() {
    return columnsOf(STD_ERROR_HANDLE);
}

bool outputUnderstandsEscapes() {
    return understandsEscapes(STD_OUTPUT_HANDLE);
}

bool errorUnderstandsEscapes() {
    return understandsEscapes(STD_ERROR_HANDLE);
}

OutputDiversion::OutputDiversion() : kept_(_dup(_fileno(stdout))) {
    std::fflush(stdout);
    if (kept_ >= 0) _dup2(_fileno(stderr), _fileno(stdout));
}

OutputDiversion::~OutputDiversion() {
    if (kept_ < 0) return;
    std::fflush(stdout);
    _dup2(kept_, _fileno(stdout));
    _close(kept_);
}

bool ownsItsWindow() {
    DWORD processes[2];
    return GetConsoleProcessList(processes, 2) == 1;
}

bool showFile(const std::filesystem::path& file) {
    constexpr INT_PTR kLastFailure = 32;  // of ShellExecute
    const std::wstring name = std::filesystem::absolute(file).wstring();
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", name.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > kLastFailure;
}

int firstWeekday() {
    // 0 is Monday there.
    DWORD day = 6;
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IFIRSTDAYOFWEEK | LOCALE_RETURN_NUMBER,
                    reinterpret_cast<wchar_t*>(&day), sizeof(day) / sizeof(wchar_t));
    return static_cast<int>((day + 1) % 7) + 1;
}

const char* endOfInputKeys() {
    return "Ctrl-Z and Enter";
}

}  // namespace qel::cli::platform
