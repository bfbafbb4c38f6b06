/// @file
/// The arrays of VStr. VStrArray holds exactly its elements in one block and makes a new block at
/// each change of size; `CBxArray<VStr>` grows by 128 elements and checks its indexes; Bx_VStrArray
/// adds an append that takes the string over and a search without regard to case. None is locked:
/// who shares one between threads locks outside it.
///
/// Texts and strings given to an array may be its own elements. References to elements and GetPtr
/// are invalidated by every change of size.
#ifndef QELUTILITY_VSTRARRAY_H
#define QELUTILITY_VSTRARRAY_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

/// An array that holds exactly its elements. Indexes count from 0. An index outside the array reads
/// a null string and writes nowhere, and so does every index after memory was exhausted, when the
/// array keeps its size but has no elements. Negative counts and positions do nothing.
class QELUTILITY_API VStrArray {
  public:
    /// An empty array.
    VStrArray();
    /// As Append: null elements arrive allocated empty.
    VStrArray(const VStrArray& o);
    /// Frees the elements.
    ~VStrArray();

    /// The number of elements.
    int GetSize() const;
    /// The last element's index; -1 for an empty array.
    int GetUpperBound() const;
    /// Elements beyond the old size are null. Every call makes a new block and looks through the
    /// text of all elements that stay.
    void SetSize(int n);
    /// SetSize(0).
    void RemoveAll();

    ///@{
    /// A copy of the element; an allocated empty one gives a null string.
    VStr GetAt(int i);
    VStr operator[](int i) const;
    ///@}
    ///@{
    /// The element itself, until the next change of size.
    VStr& ElementAt(int i);
    VStr& operator[](int i);
    ///@}

    /// A null `s` makes the element null.
    void SetAt(int i, const char* s);
    /// The first `n` bytes of s, up to a NUL; null for a null `s` and a count of 0.
    void SetAt(int i, const char* s, int n);

    /// Appends a copy of the text: null for a null `s`, allocated empty for the empty text. Gives
    /// the new element's index.
    int Add(const char* s);
    /// Appends `VStr(s, n)`. Gives the new element's index.
    int Add(const char* s, int n);
    /// Appends the texts of `o`; its null elements arrive allocated empty. Gives the index of the
    /// first, -1 when `o` is empty. Appending an array to itself appends the elements that it had.
    int Append(const VStrArray& o);
    ///@{
    /// RemoveAll, then Append: an array assigned to itself is empty afterwards.
    void Copy(const VStrArray& o);
    VStrArray& operator=(const VStrArray& o);
    ///@}

    /// Puts `count` times s before element `i`. An i beyond the end fills up with null elements,
    /// with a count of 0 too.
    void InsertAt(int i, const char* s, int count = 1);
    /// Removes `count` elements from `i`; nothing happens unless all of them exist.
    void RemoveAt(int i, int count = 1);

  protected:
    /// A null string for inline code of derived classes; no operation here gives it out.
    static VStr m_EmptyVStr;

    /// `n` null strings, or null when memory is exhausted or n is negative. VStrArrDel frees them.
    VStr* VStrArrNew(int n);
    /// Frees what VStrArrNew gave; `n` is ignored.
    void VStrArrDel(VStr* p, int n);

  private:
    QELUTILITY_LOCAL int AddValue(VStr& value);

    VStr* m_data;
    int m_size;
};

/// Only the array of strings exists.
template <class T>
class CBxArray;

/// An array that grows by 128 elements and throws for an index outside it.
template <>
class QELUTILITY_API CBxArray<VStr> {
  public:
    /// An empty array.
    CBxArray();
    ///@{
    /// Copying is deep. Where memory is exhausted the copy is empty, or the elements that there was
    /// none for are null.
    CBxArray(const CBxArray& o);
    CBxArray& operator=(const CBxArray& o);
    ///@}
    /// Frees the elements.
    ~CBxArray();

    /// The number of elements.
    int GetSize();
    /// The elements; null before the first Add.
    VStr* GetPtr();
    /// Gives the new element's index, or -1 with the array as it was when memory is exhausted. The
    /// empty text gives a null element.
    int Add(VStr v);
    /// Throws the `int` -1 for an index outside the array.
    VStr& operator[](int i);
    /// The first element whose text equals that of `v`, or -1; null strings count as empty.
    int FindItem(VStr v);
    /// Frees all elements and their block.
    void RemoveAll();

  protected:
    /// Makes room for one element more by moving the others, whole or up to their first NUL; false
    /// when memory is exhausted, with the array as it was.
    QELUTILITY_LOCAL bool GrowForOne(bool moving);

    int m_lastIndex;  ///< highest index that there is room for, -1 without a block
    int m_size;       ///< the number of elements
    VStr* m_data;     ///< the block, or null
};

/// A CBxArray of strings with two operations more.
class QELUTILITY_API Bx_VStrArray : public CBxArray<VStr> {
  public:
    /// An empty array.
    Bx_VStrArray();
    ///@{
    /// Deep, as the base's copying.
    Bx_VStrArray(const Bx_VStrArray& o);
    Bx_VStrArray& operator=(const Bx_VStrArray& o);
    ///@}
    /// Frees the elements.
    ~Bx_VStrArray();

    /// Takes the text of `v` over, which is null afterwards. Gives the new element's index, or -1
    /// with both as they were when memory is exhausted.
    int AddVStr(VStr& v);
    /// The first element for which CompareNoCase(s) is 0, or -1. A null element never equals a
    /// text, not even the empty one; a null `s` equals the first null element.
    int FindItemNoCase(const char* s);
};

#endif
