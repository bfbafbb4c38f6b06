"""Steps a repeat record from Python: repeat.py [LIBRARY], or the library in QELUTILITY_LIBRARY."""
import ctypes
import os
import sys

path = sys.argv[1] if len(sys.argv) > 1 else os.environ.get("QELUTILITY_LIBRARY", "libQelUtility.so.1")
library = ctypes.CDLL(path)


class Repeat(ctypes.Structure):
    """ZQTR_REPEAT of QelUtility/RptNext.h, packed as it is there."""
    _pack_ = 1
    _fields_ = [
        ("type", ctypes.c_short), ("startDate", ctypes.c_int), ("endDate", ctypes.c_int),
        ("interval", ctypes.c_short), ("unitCount", ctypes.c_short),
        ("text1", ctypes.c_char * 31), ("text2", ctypes.c_char * 31),
        ("dayOfMonth", ctypes.c_short), ("month", ctypes.c_short),
        ("dayOfWeek", ctypes.c_short), ("weekOfMonth", ctypes.c_short),
        ("days", ctypes.c_short * 7), ("months", ctypes.c_short * 12), ("weeks", ctypes.c_short * 5),
        ("exclusionCount", ctypes.c_short), ("exclusionFlags", ctypes.c_uint),
        ("exclusions", ctypes.POINTER(ctypes.c_int)), ("exclusionExtra", ctypes.c_short),
    ]


library.ZQ_CodeDateToAlpha.restype = ctypes.c_char_p
library.MD5String.restype = ctypes.c_char_p

repeat = Repeat(type=4, startDate=library.ZQ_AlphaToCodeDate(b"20050601"), endDate=-1,
                interval=1, unitCount=1, dayOfWeek=6, weekOfMonth=5)  # the last Friday of each month
day, previous, text = ctypes.c_int(), ctypes.c_int(-1), ctypes.create_string_buffer(33)
for _ in range(3):
    if library.ZQRepeatNextDate(ctypes.byref(repeat), ctypes.byref(day), ctypes.byref(previous)) != 0:
        sys.exit("no further occurrence")
    print(library.ZQ_CodeDateToAlpha(day, text).decode())
print(library.MD5String(b"", text).decode())

# Prints:
# 20050624
# 20050729
# 20050826
# d41d8cd98f00b204e9800998ecf8427e
