#include "model/history/HistorySearch.h"

#include "model/history/HistoryRecords.h"

std::shared_ptr<HistoryItems> HistorySearch::copiesOfMatches(HistoryItems &history)
{
    const HistoryRecords &records = history.records();
    const std::weak_ptr<const void> texts = records.sharedTexts();
    if (texts.owner_before(_texts) || _texts.owner_before(texts)) {
        _texts = texts;
        _isFound.clear();
    }
    const unsigned firstNew = unsigned(_isFound.size());
    _isFound.resize(std::max(firstNew, records.nextSerialNumber()));
    std::vector<unsigned> indexes;
    for (unsigned index = 0; index < history.count(); ++index) {
        const unsigned record = history.recordNumber(index);
        const unsigned serialNumber = records.serialNumber(record);
        if (serialNumber >= firstNew)
            _isFound[serialNumber] = records.matches(record, _search);
        if (_isFound[serialNumber])
            indexes.push_back(index);
    }
    return history.copiesOf(indexes);
}
