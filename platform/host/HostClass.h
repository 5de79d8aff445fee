#pragma once

#include <functional>
#include <memory>
#include <utility>

// A class of the host whose instances others may specialise, for the whole process:
//
//     auto *webView = application.classes().classNamed<HostWebViewDrawing>("WebView");
//     webView->replace([](std::unique_ptr<HostWebViewDrawing> base) {
//         return std::make_unique<KDRWebView>(std::move(base));
//     });
//
// The host makes each instance through `make`, so every one that it makes after `replace` is a specialised one. The
// specialisation owns the instance that it stands in for and passes calls on to it. Replacing twice nests.
template <class Instance>
class HostClass
{
public:
    using Specialisation = std::function<std::unique_ptr<Instance>(std::unique_ptr<Instance>)>;

    void replace(Specialisation specialisation)
    {
        _specialise = [inner = std::move(_specialise),
                       outer = std::move(specialisation)](std::unique_ptr<Instance> base) {
            return outer(inner ? inner(std::move(base)) : std::move(base));
        };
    }

    std::unique_ptr<Instance> make(std::unique_ptr<Instance> base) const
    {
        return _specialise ? _specialise(std::move(base)) : std::move(base);
    }

private:
    Specialisation _specialise;
};
