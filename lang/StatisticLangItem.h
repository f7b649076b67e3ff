#pragma once
// Captions of the statistics window and its two dialogs. Each instance carries a debug
// identity from the shared ClassIDGenerator, traced at creation and end in debug builds.

#include <cstdint>
#include <memory>

#include "lang/CaptionList.h"
#include "lang/MenuCaptions.h"
#include "rt/CreatedOnFirstUse.h"

namespace lang {

class StatisticLangItem {
public:
    StatisticLangItem();
    ~StatisticLangItem();
    StatisticLangItem(const StatisticLangItem&) = delete;
    StatisticLangItem& operator=(const StatisticLangItem&) = delete;

    CaptionList& BuilderTable() const { return builderTable_.get(); }
    void setBuilderTable(std::shared_ptr<CaptionList> v) { builderTable_.set(std::move(v)); }
    CaptionList& GraphPlot() const { return graphPlot_.get(); }
    void setGraphPlot(std::shared_ptr<CaptionList> v) { graphPlot_.set(std::move(v)); }
    CaptionList& Main() const { return main_.get(); }
    void setMain(std::shared_ptr<CaptionList> v) { main_.set(std::move(v)); }
    CaptionList& ToolBar() const { return toolBar_.get(); }
    void setToolBar(std::shared_ptr<CaptionList> v) { toolBar_.set(std::move(v)); }
    MenuCaptions& Menu() const { return menu_.get(); }
    void setMenu(std::shared_ptr<MenuCaptions> v) { menu_.set(std::move(v)); }

    int32_t ClassDebugID() const { return classDebugId_; }

private:
    rt::CreatedOnFirstUse<CaptionList> builderTable_;
    rt::CreatedOnFirstUse<CaptionList> graphPlot_;
    rt::CreatedOnFirstUse<CaptionList> main_;
    rt::CreatedOnFirstUse<CaptionList> toolBar_;
    rt::CreatedOnFirstUse<MenuCaptions> menu_;
    int32_t classDebugId_;
};

}  // namespace lang
