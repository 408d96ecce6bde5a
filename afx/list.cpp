#include "afx/list.h"

#include <utility>

IMPLEMENT_DYNAMIC(CPtrList, CObject)

CPtrList::CPtrList(INT_PTR) {}

CPtrList::~CPtrList() {
    CPtrList::RemoveAll();
    delete m_spare;
}

POSITION CPtrList::Link(void* data, Node* prev, Node* next) {
    Node* node = std::exchange(m_spare, nullptr);
    if (node == nullptr) node = new Node;
    *node = {next, prev, data};
    (prev != nullptr ? prev->next : m_head) = node;
    (next != nullptr ? next->prev : m_tail) = node;
    ++m_nCount;
    return ToPosition(node);
}

void CPtrList::RemoveAt(POSITION position) {
    Node* node = ToNode(position);
    (node->prev != nullptr ? node->prev->next : m_head) = node->next;
    (node->next != nullptr ? node->next->prev : m_tail) = node->prev;
    --m_nCount;
    delete std::exchange(m_spare, node);
}

void* CPtrList::RemoveHead() {
    void* data = GetHead();
    RemoveAt(GetHeadPosition());
    return data;
}

void* CPtrList::RemoveTail() {
    void* data = GetTail();
    RemoveAt(GetTailPosition());
    return data;
}

void CPtrList::RemoveAll() {
    while (m_head != nullptr) delete std::exchange(m_head, m_head->next);
    m_tail = nullptr;
    m_nCount = 0;
}

// Counted, so that a list may be added to itself.
void CPtrList::AddTail(const CPtrList* pNewList) {
    if (pNewList == nullptr) AfxThrowInvalidArgException();
    const Node* walk = pNewList->m_head;
    for (INT_PTR left = pNewList->m_nCount; left > 0; --left, walk = walk->next) AddTail(walk->data);
}

void CPtrList::AddHead(const CPtrList* pNewList) {
    if (pNewList == nullptr) AfxThrowInvalidArgException();
    const Node* walk = pNewList->m_tail;
    for (INT_PTR left = pNewList->m_nCount; left > 0; --left, walk = walk->prev) AddHead(walk->data);
}

POSITION CPtrList::InsertBefore(POSITION position, void* newElement) {
    if (position == nullptr) return AddHead(newElement);
    Node* node = ToNode(position);
    return Link(newElement, node->prev, node);
}

POSITION CPtrList::InsertAfter(POSITION position, void* newElement) {
    if (position == nullptr) return AddTail(newElement);
    Node* node = ToNode(position);
    return Link(newElement, node, node->next);
}

POSITION CPtrList::Find(const void* searchValue, POSITION startAfter) const {
    Node* walk = startAfter != nullptr ? ToNode(startAfter)->next : m_head;
    while (walk != nullptr && walk->data != searchValue) walk = walk->next;
    return ToPosition(walk);
}

POSITION CPtrList::FindIndex(INT_PTR nIndex) const {
    if (nIndex < 0 || nIndex >= m_nCount) return nullptr;
    Node* walk = m_head;
    while (nIndex-- > 0) walk = walk->next;
    return ToPosition(walk);
}
