// What the server plays: a set of applications, each serving some hosts and paths.
#pragma once

#include <memory>
#include <vector>

#include "standin/body_sink.h"
#include "standin/request.h"
#include "standin/response.h"

namespace velandoc::standin {

// Many connection threads call one application at the same time.
class Application {
 public:
  virtual ~Application() = default;

  // Decided by the head alone, before the body is read.
  virtual bool Serves(const Request& request) const = 0;

  // The body is only counted: request.body may be empty in Answer, request.bodyLength is right.
  virtual bool IgnoresBody(const Request&) const { return false; }

  // Asked once the head is read. Null: the body is read as IgnoresBody says, then Answer is called.
  // Else the body goes there, and Answer is not called.
  virtual std::unique_ptr<BodySink> OpenBody(const Request&) { return nullptr; }

  virtual Response Answer(const Request& request) = 0;
};

// The first that serves a request answers it.
class ApplicationList {
 public:
  void Add(std::unique_ptr<Application> application) {
    m_applications.push_back(std::move(application));
  }
  // Null when no application serves the request.
  Application* Find(const Request& request) const {
    for (const auto& application : m_applications)
      if (application->Serves(request)) return application.get();
    return nullptr;
  }

 private:
  std::vector<std::unique_ptr<Application>> m_applications;
};

}  // namespace velandoc::standin
