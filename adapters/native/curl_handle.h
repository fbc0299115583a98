#pragma once

#include <curl/curl.h>

#include <memory>
#include <new>
#include <string>
#include <utility>

/// libcurl's handles as C++ values. Threads: one at a time.
namespace oska::native {

/// A list of lines.
class CurlList {
public:
    void append(const std::string& line) {
        // The head of the list never changes once there is one. Without memory the list stays as it was.
        if (auto* head = curl_slist_append(list_.get(), line.c_str())) {
            (void)list_.release();
            list_.reset(head);
        }
    }
    [[nodiscard]] curl_slist* get() const { return list_.get(); }

private:
    struct Free {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };
    std::unique_ptr<curl_slist, Free> list_;
};

/// One transfer. The result of every option is kept, so that an option that libcurl refuses is noticed.
class CurlEasy {
public:
    CurlEasy() : handle_(curl_easy_init()), result_(handle_ ? CURLE_OK : CURLE_OUT_OF_MEMORY) {}

    template <class Value>
    CurlEasy& set(CURLoption option, Value value) {
        if (result_ == CURLE_OK) result_ = curl_easy_setopt(handle_.get(), option, value);
        return *this;
    }

    /// `CURLE_OK`, or the error of the first option that libcurl refused.
    [[nodiscard]] CURLcode result() const { return result_; }
    [[nodiscard]] CURL* get() const { return handle_.get(); }

private:
    struct Free {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    std::unique_ptr<CURL, Free> handle_;
    CURLcode result_;
};

/// Kept connections for the transfers that name this pool. Lifetime: longer than its transfers.
class CurlPool {
public:
    /// Throws `std::bad_alloc`.
    CurlPool() : handle_(curl_share_init()) {
        const bool isPool = handle_ && curl_share_setopt(handle_.get(), CURLSHOPT_SHARE,
                                                         CURL_LOCK_DATA_CONNECT) == CURLSHE_OK;
        if (!isPool) throw std::bad_alloc();
    }
    [[nodiscard]] CURLSH* get() const { return handle_.get(); }

private:
    struct Free {
        void operator()(CURLSH* handle) const { curl_share_cleanup(handle); }
    };
    std::unique_ptr<CURLSH, Free> handle_;
};

/// A URL and its parts, by libcurl's rules.
class CurlUrl {
public:
    CurlUrl() : handle_(curl_url()) {}

    [[nodiscard]] CURLUcode set(CURLUPart part, const std::string& text, unsigned flags) {
        return handle_ ? curl_url_set(handle_.get(), part, text.c_str(), flags) : CURLUE_OUT_OF_MEMORY;
    }

    /// Empty when the URL has no such part.
    [[nodiscard]] std::string part(CURLUPart part) const {
        char* text = nullptr;
        if (curl_url_get(handle_.get(), part, &text, 0) != CURLUE_OK) return {};
        std::string copy(text);
        curl_free(text);
        return copy;
    }
    [[nodiscard]] CURLU* get() const { return handle_.get(); }

private:
    struct Free {
        void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
    };
    std::unique_ptr<CURLU, Free> handle_;
};

}  // namespace oska::native
