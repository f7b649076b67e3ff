#pragma once
// The root of the loaded captions (the program's gLang): one group per window family and
// the captions the host's dialogs share. Every object-valued property is created the
// first time it is read; the loader is the only code that fills them.

#include <cstdint>
#include <memory>
#include <QString>

#include "lang/CaptionList.h"
#include "lang/StatisticLangItem.h"
#include "lang/TableLangItem.h"
#include "rt/CreatedOnFirstUse.h"

namespace lang {

class LangApp {
public:
    StatisticLangItem& Statistic() const { return statistic_.get(); }
    void setStatistic(std::shared_ptr<StatisticLangItem> v) { statistic_.set(std::move(v)); }
    // Caption groups of the host's own windows: this program neither fills nor reads them.
    CaptionList& TransUnitFrame() const { return transUnitFrame_.get(); }
    void setTransUnitFrame(std::shared_ptr<CaptionList> v) { transUnitFrame_.set(std::move(v)); }
    CaptionList& AddTarifMessages() const { return addTarifMessages_.get(); }
    void setAddTarifMessages(std::shared_ptr<CaptionList> v) { addTarifMessages_.set(std::move(v)); }
    TableLangItem& Table() const { return table_.get(); }
    void setTable(std::shared_ptr<TableLangItem> v) { table_.set(std::move(v)); }
    CaptionList& NumberType() const { return numberType_.get(); }
    void setNumberType(std::shared_ptr<CaptionList> v) { numberType_.set(std::move(v)); }
    CaptionList& Buttons() const { return buttons_.get(); }
    void setButtons(std::shared_ptr<CaptionList> v) { buttons_.set(std::move(v)); }

    int16_t Version() const { return version_; }
    void setVersion(int16_t v) { version_ = v; }
    QString EngCaption() const { return engCaption_; }
    void setEngCaption(const QString& v) { engCaption_ = v; }
    QString OutCaption() const { return outCaption_; }
    void setOutCaption(const QString& v) { outCaption_ = v; }

private:
    rt::CreatedOnFirstUse<StatisticLangItem> statistic_;
    rt::CreatedOnFirstUse<CaptionList> transUnitFrame_;
    rt::CreatedOnFirstUse<CaptionList> addTarifMessages_;
    rt::CreatedOnFirstUse<TableLangItem> table_;
    rt::CreatedOnFirstUse<CaptionList> numberType_;
    rt::CreatedOnFirstUse<CaptionList> buttons_;
    int16_t version_ = 0;
    QString engCaption_;
    QString outCaption_;
};

}  // namespace lang
