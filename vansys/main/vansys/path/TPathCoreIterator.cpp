#include "vansys/TPathCoreIterator.h"

TPathCore::iterator::iterator(TPathCore const *path, int position) : m_path(path), m_position(position)
{
    if (m_path)
        m_element = get();
}

TStringCore TPathCore::iterator::get() const
{
    int const length = m_path->m_text.length();
    if (m_position == length)
        return TStringCore();
    if (m_position > length)
        throw Exception(u"Invalid index in TPathCore::iterator::get.", false);
    return m_path->m_text.mid(m_position, m_path->ElementLengthAt(m_position));
}

TPathCore::iterator TPathCore::iterator::next() const
{
    if (!m_path || m_position == m_path->m_text.length())
        throw Exception(u"TPathCore::iterator trying to increment beyond end.", false);
    int const length = m_path->m_text.length();
    int position = m_position + m_path->ElementLengthAt(m_position);
    if (position < length)
        position += m_path->SeparatorLengthAt(position);
    if (position > length)
        throw Exception(u"TPathCore::iterator out of sync in next.", false);
    if (position == m_position)
        throw Exception(u"TPathCore::iterator found a zero-length element.", false);
    return iterator(m_path, position);
}

TPathCore::iterator TPathCore::iterator::prev() const
{
    if (m_position == 0)
        throw Exception(u"TPathCore::iterator trying to decrement beyond beginning.", false);
    for (int position = 0;;)
    {
        int behind = position + m_path->ElementLengthAt(position);
        if (behind < m_position)
            behind += m_path->SeparatorLengthAt(behind);
        if (behind == m_position)
            return iterator(m_path, position);
        if (behind > m_position)
            throw Exception(u"TPathCore::iterator out of sync in prev.", false);
        position = behind;
    }
}

TPathCore::iterator TPathCore::begin() const
{
    return iterator(this, 0);
}

TPathCore::iterator TPathCore::end() const
{
    return iterator(this, m_text.length());
}
