// CPtrList: the framework's doubly linked list of pointers, which it does not own. One thread at a time.
// A position stays valid until its own element is removed. A null position, or one that leads nowhere, raises the
// invalid-argument exception.
#pragma once

#include "afx/exception.h"
#include "afx/object.h"
#include "afx/position.h"

class ORVIK_API CPtrList : public CObject {
    DECLARE_DYNAMIC(CPtrList)

public:
    explicit CPtrList(INT_PTR nBlockSize = 10);  // the block size is accepted and not needed
    ~CPtrList() override;

    INT_PTR GetCount() const { return m_nCount; }
    INT_PTR GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    // Raise on an empty list.
    void*& GetHead() { return GetAt(GetHeadPosition()); }
    void* GetHead() const { return GetAt(GetHeadPosition()); }
    void*& GetTail() { return GetAt(GetTailPosition()); }
    void* GetTail() const { return GetAt(GetTailPosition()); }
    void* RemoveHead();
    void* RemoveTail();

    POSITION AddHead(void* newElement) { return Link(newElement, nullptr, m_head); }
    POSITION AddTail(void* newElement) { return Link(newElement, m_tail, nullptr); }
    void AddHead(const CPtrList* pNewList);
    void AddTail(const CPtrList* pNewList);
    void RemoveAll();

    // Null at the ends.
    POSITION GetHeadPosition() const { return ToPosition(m_head); }
    POSITION GetTailPosition() const { return ToPosition(m_tail); }
    void*& GetNext(POSITION& rPosition) {
        Node* node = ToNode(rPosition);
        rPosition = ToPosition(node->next);
        return node->data;
    }
    void* GetNext(POSITION& rPosition) const { return const_cast<CPtrList*>(this)->GetNext(rPosition); }
    void*& GetPrev(POSITION& rPosition) {
        Node* node = ToNode(rPosition);
        rPosition = ToPosition(node->prev);
        return node->data;
    }
    void* GetPrev(POSITION& rPosition) const { return const_cast<CPtrList*>(this)->GetPrev(rPosition); }

    void*& GetAt(POSITION position) { return ToNode(position)->data; }
    void* GetAt(POSITION position) const { return ToNode(position)->data; }
    void SetAt(POSITION pos, void* newElement) { ToNode(pos)->data = newElement; }
    void RemoveAt(POSITION position);
    // A null position inserts at the head, or at the tail.
    POSITION InsertBefore(POSITION position, void* newElement);
    POSITION InsertAfter(POSITION position, void* newElement);

    // The first such element behind startAfter (from the head for null), or null.
    POSITION Find(const void* searchValue, POSITION startAfter = nullptr) const;
    POSITION FindIndex(INT_PTR nIndex) const;

private:
    struct Node {
        Node* next;
        Node* prev;
        void* data;
    };
    static POSITION ToPosition(Node* node) { return reinterpret_cast<POSITION>(node); }
    static Node* ToNode(POSITION position) {
        if (position == nullptr) AfxThrowInvalidArgException();
        return reinterpret_cast<Node*>(position);
    }
    POSITION Link(void* data, Node* prev, Node* next);

    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    INT_PTR m_nCount = 0;
    Node* m_spare = nullptr;  // the node removed last, for the next element: a list used as a queue asks the heap for nothing
};

// The same list with its elements' own pointer type: CTypedPtrList<CPtrList, CThing*>.
template <class BASE_CLASS, class TYPE>
class CTypedPtrList : public BASE_CLASS {
public:
    explicit CTypedPtrList(INT_PTR nBlockSize = 10) : BASE_CLASS(nBlockSize) {}

    TYPE GetHead() const { return static_cast<TYPE>(BASE_CLASS::GetHead()); }
    TYPE GetTail() const { return static_cast<TYPE>(BASE_CLASS::GetTail()); }
    TYPE RemoveHead() { return static_cast<TYPE>(BASE_CLASS::RemoveHead()); }
    TYPE RemoveTail() { return static_cast<TYPE>(BASE_CLASS::RemoveTail()); }
    POSITION AddHead(TYPE newElement) { return BASE_CLASS::AddHead(newElement); }
    POSITION AddTail(TYPE newElement) { return BASE_CLASS::AddTail(newElement); }
    TYPE GetNext(POSITION& rPosition) const { return static_cast<TYPE>(BASE_CLASS::GetNext(rPosition)); }
    TYPE GetPrev(POSITION& rPosition) const { return static_cast<TYPE>(BASE_CLASS::GetPrev(rPosition)); }
    TYPE GetAt(POSITION position) const { return static_cast<TYPE>(BASE_CLASS::GetAt(position)); }
    void SetAt(POSITION pos, TYPE newElement) { BASE_CLASS::SetAt(pos, newElement); }
    POSITION InsertBefore(POSITION position, TYPE newElement) { return BASE_CLASS::InsertBefore(position, newElement); }
    POSITION InsertAfter(POSITION position, TYPE newElement) { return BASE_CLASS::InsertAfter(position, newElement); }
};
