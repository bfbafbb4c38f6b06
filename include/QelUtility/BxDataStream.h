/// @file
/// CBxDataStream turns values into one text and reads them back in the same order; CBxBuffer is the
/// growable storage under it and CBxIntList a list that it knows. Not locked: one thread at a time.
///
/// The text ends in a NUL byte and holds values separated by the byte 0x1F (written | here), so
/// that it can be stored, logged or passed wherever a C string can:
///
/// - integers: lower-case hexadecimal without leading zeros, two's complement in the width of the
///   type, so zero is an empty value; -1 (all bits set) is "-". A `long` has 32 bits on every
///   platform. bool is the int 0 or 1. The ints 26, 0, -1 and 256 are `1a||-|100`.
/// - texts: as they are; a null pointer is "1f"
/// - lists: the count as `long`, then the elements
/// - streams: the count of bytes as `long`, then the whole content with its separators
/// - binary: the count as `long`, and unless that is 0 the bytes as one value: 0x20 to 0xFD are
///   themselves, 00 is the byte FF, others are the byte FE and two hexadecimal digits
///
/// Writers and readers throw an `int`: 2001 out of memory or too large, 2013 growth of storage that
/// is not owned, 2023 read past the end, 2015 a number that is malformed, or a `long` beyond 32
/// bits where that is wider. All but 2015 are logged. After a throw the position is where it was
/// before the value that failed; values of a list that came before it are kept.
#ifndef QELUTILITY_BXDATASTREAM_H
#define QELUTILITY_BXDATASTREAM_H

#include <vector>

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"

/// Growable storage with a position. It is either owned (freed by Dispose) or external (given by
/// SetExtBuf or let go of by DisownBuffer; never freed and never grown).
class QELUTILITY_API CBxBuffer {
  public:
    /// No storage yet; what is allocated later is owned.
    CBxBuffer();
    ///@{
    /// Both buffers share the storage afterwards: one of the two must be disowned before either
    /// goes away, or it is freed twice. Assigning frees nothing.
    CBxBuffer(const CBxBuffer& o);
    CBxBuffer& operator=(const CBxBuffer& o);
    ///@}
    /// Frees owned storage.
    virtual ~CBxBuffer();

    /// Room for `needed` more bytes at the position and one to spare, what lies before the position
    /// kept. Capacities start at 256, 1024, 4096, 16384, 65536 or, from 32768 needed bytes on, at
    /// the larger of 262144 and twice the need; they double until they hold twice the need. Throws
    /// 2013 for external storage whether there is room or not, 2001 beyond 0x3FFFFFFF bytes or
    /// without memory. A negative count is 0.
    virtual void GrowBuf(int needed);
    /// Frees owned storage. Length and capacity keep their values until the next write.
    virtual void Dispose();
    /// Reads from `data` on, which the caller keeps alive. Negative counts are 0.
    virtual void SetExtBuf(void* data, int length, int capacity);

    /// Lets go of the storage: it counts as external from now on, and whoever shares it frees it.
    void DisownBuffer();

    /// The first byte; null where there is no storage yet.
    const unsigned char* Storage() const { return m_storage; }
    /// Where the next value is written or read.
    const unsigned char* Position() const { return m_position; }
    /// Bytes of storage.
    unsigned int Capacity() const { return m_capacity; }
    /// Whether the storage is not owned.
    bool IsExternal() const { return m_external != 0; }

  protected:
    /// The bytes of content that lie within the storage.
    QELUTILITY_LOCAL unsigned int ContentSize() const;

    unsigned char* m_storage;   ///< allocated with malloc when owned
    unsigned char* m_position;  ///< where the next value is written or read
    unsigned int m_length;    ///< bytes of content, the terminating zero included once there is any
    unsigned int m_capacity;  ///< bytes of storage
    unsigned char m_external;  ///< not 0: the storage is not owned
};

/// A list of integers of 32 bits.
class QELUTILITY_API CBxIntList {
  public:
    /// An empty list.
    CBxIntList();
    ///@{
    /// Deep; a copy that there is no memory for is empty.
    CBxIntList(const CBxIntList& o);
    CBxIntList& operator=(const CBxIntList& o);
    ///@}
    ~CBxIntList();

    /// The number of elements.
    int GetSize() const;
    /// -1 for an index outside the list.
    int operator[](int i) const;
    /// The new element's index, or -1 when memory is exhausted.
    int Add(int value);

  private:
    std::vector<int> m_values;
};

/// Values one after the other in one text; see BxDataStream.h for its form.
class QELUTILITY_API CBxDataStream : public CBxBuffer {
  public:
    /// An empty stream, ready to write.
    CBxDataStream();
    /// Shares the storage, as CBxBuffer.
    CBxDataStream(const CBxDataStream& o);
    /// Becomes a copy of the other's content, ready to read.
    CBxDataStream& operator=(CBxDataStream& other);
    /// Frees owned storage.
    ~CBxDataStream() override;

    /// A stream that holds a copy of `size` bytes, with the position at their start to read or just
    /// past them to write. 0, or 2001, logged, with the stream empty when memory is exhausted, when
    /// `data` is null and when `size` has more than 32 bits.
    int Initialize(unsigned char* data, unsigned long size, bool forReading);
    /// Ready to read `text`, its terminator included; null is the empty text.
    int Initialize(const char* text);
    /// The content becomes a copy of `size` bytes, ready to read.
    void ReplaceBuffer(unsigned char* data, unsigned long size);
    /// Writes `size` bytes and a zero at the position, without a separator; 0 bytes: nothing.
    void AppendRawBytes(unsigned char* data, unsigned long size);

    /// Bytes of content, the terminator included once there is any content.
    unsigned long Len() const;
    /// Puts the position at the first value, to read or to write over it.
    void SeekToBegin();
    /// Forgets the content and keeps the storage.
    void Reset();
    /// Frees the storage.
    void Empty();

    /// Writes `size` bytes as one value, after a separator where there is one before it.
    void AddToBuf(char* text, int size);

    /// The bytes at `p` before a separator or zero byte; 0 when neither stands within as many bytes
    /// as the capacity, or within the storage where `p` points into it.
    int CBxstrlen(unsigned char* p);
    /// Copies `src` up to and including its first separator, at most as many bytes as the capacity;
    /// without a separator the whole of it and its terminator. Gives `dst`.
    void* CBxstrcpy(char* dst, const char* src);
    /// Puts a zero byte in the place of the first separator.
    void Replace1FWithNull(char* text);
    /// Prints the content and a line end to standard output.
    void PrintAllBytes();

    // --- Writers ---------------------------------------------------------------------------------

    ///@{
    /// Writes one number, or a bool as the int 0 or 1; gives this stream.
    CBxDataStream& operator<<(char value);
    CBxDataStream& operator<<(unsigned char value);
    CBxDataStream& operator<<(short value);
    CBxDataStream& operator<<(unsigned short value);
    CBxDataStream& operator<<(int value);
    CBxDataStream& operator<<(unsigned int value);
    CBxDataStream& operator<<(long value);
    CBxDataStream& operator<<(unsigned long value);
    CBxDataStream& operator<<(long long value);
    CBxDataStream& operator<<(unsigned long long value);
    CBxDataStream& operator<<(bool value);
    ///@}
    /// The first separator in `text` is overwritten by "~", in the caller's own text: a text that
    /// has one must be writable. Further separators stay and split the value.
    CBxDataStream& operator<<(const char* text);
    /// A text too: keeps a pointer to bytes from being written as a bool.
    CBxDataStream& operator<<(const unsigned char* text);
    ///@{
    /// Writes the count and then each element as a text or number.
    CBxDataStream& operator<<(const VStrArray& list);
    CBxDataStream& operator<<(VStrArray& list);
    CBxDataStream& operator<<(CBxIntList& list);
    ///@}
    ///@{
    /// Writes the count of bytes and then the whole content of `nested`.
    CBxDataStream& operator<<(const CBxDataStream& nested);
    CBxDataStream& operator<<(CBxDataStream& nested);
    ///@}

    /// Writes `size` bytes of binary data. Gives 0, or 2001, logged, when memory is exhausted;
    /// throws as the other writers do.
    int Write(unsigned char* data, long size);

    // --- Readers ---------------------------------------------------------------------------------

    ///@{
    /// Reads one number, narrowed to the type; a `long` is read with its sign, an `unsigned long`
    /// as 32 bits. At the terminator of the content a number reads 0.
    CBxDataStream& operator>>(char& value);
    CBxDataStream& operator>>(unsigned char& value);
    CBxDataStream& operator>>(bool& value);
    CBxDataStream& operator>>(short& value);
    CBxDataStream& operator>>(unsigned short& value);
    CBxDataStream& operator>>(int& value);
    CBxDataStream& operator>>(unsigned int& value);
    CBxDataStream& operator>>(long& value);
    CBxDataStream& operator>>(unsigned long& value);
    CBxDataStream& operator>>(long long& value);
    CBxDataStream& operator>>(unsigned long long& value);
    ///@}
    /// Reads a text; "" at the terminator. Where neither a separator nor a zero byte follows before
    /// the end of the storage the text is "" and the position stays. `text` must have room for the
    /// value and a terminator; a null one skips the value.
    CBxDataStream& operator>>(char* text);
    /// Reads a text likewise; an allocated empty one for "".
    CBxDataStream& operator>>(VStr& text);
    ///@{
    /// Appends the elements of a list; a negative count is an empty list.
    CBxDataStream& operator>>(VStrArray& list);
    CBxDataStream& operator>>(CBxIntList& list);
    ///@}
    /// `nested` becomes a copy of the nested content, ready to read.
    CBxDataStream& operator>>(CBxDataStream& nested);

    /// Reads binary data. With a null `data` it receives a new block, which ends in an additional
    /// zero byte and which the caller frees with free(); otherwise the bytes are copied to it, and
    /// it must have room for them. `size` receives their number. Nothing is changed for data of no
    /// bytes. Gives 0; 7004 without memory or 7011 for a malformed escape, with the position before
    /// the bytes; 2015 when the bytes are not as many as announced, with the position past them.
    /// All are logged. Throws 2023 and 2015 for the count as the other readers do.
    int Read(unsigned char*& data, long& size);

  private:
    QELUTILITY_LOCAL void AddNumber(unsigned long long bits, int digits);
    QELUTILITY_LOCAL void AddLong(long long value);
    QELUTILITY_LOCAL unsigned long long ReadNumber();
    QELUTILITY_LOCAL int ReadCount();
    QELUTILITY_LOCAL int ValueLength(int line);
    [[noreturn]] QELUTILITY_LOCAL void FailPastEnd(int line);
    QELUTILITY_LOCAL void PassValue(int length);

    unsigned char* ContentEnd() const {
        return m_storage == nullptr ? nullptr
                                    : m_storage + (m_length < m_capacity ? m_length : m_capacity);
    }
};

#endif
