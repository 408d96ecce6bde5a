#include "chart/value_state.h"

CValueState::CValueState(IVModelValue* value) : m_pValue(value) {
    if (m_pValue == nullptr) return;
    m_pValue->AddRef();
    m_color = m_pValue->GetColor();
}

CValueState::~CValueState() {
    if (m_pValue != nullptr) m_pValue->Release();
}
