// rules: [{"match": {"host": "empty.example.test"}, "do": {"respond": {"status": 200, "body": ""}}}, {"match": {"host": "text.example.test"}, "do": {"respond": {"status": 200, "body": "hello"}}}, {"match": {"host": "other.example.test"}, "do": {"respond": {"status": 200, "headers": [["Content-Type", "text/xml"]], "body": "<a/>"}}}, {"match": {"host": "created.example.test"}, "do": {"status": 201}}, {"match": {"host": "fault.example.test"}, "do": {"fault": {"status": 500, "code": "Server", "text": "no"}}}, {"match": {"host": "redirected.example.test"}, "do": {"redirect": {"status": 302, "location": "http://docs.example.test/"}}}]
// What a probe says of answers that are none, and of URLs that the component takes as they are.
function attempt(name, action) {
  var line;
  try {
    line = String(action());
  } catch (error) {
    line = 'error ' + error.number + ' ' + error.message;
  }
  WScript.Echo(name + ': ' + line);
}

var check = new ActiveXObject('Velandoc.ServerCheck');
var hosts = ['docs', 'empty', 'text', 'other', 'created', 'fault', 'redirected'];
for (var i = 0; i < hosts.length; ++i) {
  attempt(hosts[i], function () { return check.Check('http://' + hosts[i] + '.example.test/'); });
}
// The port is dropped on purpose: the server is asked at the scheme's own.
attempt('with a port', function () { return check.Check('http://docs.example.test:8080/'); });
attempt('with path, query and fragment', function () { return check.Check('http://docs.example.test/a/b?c=d#e'); });
attempt('scheme in capitals', function () { return check.Check('HTTP://docs.example.test/'); });
attempt('no scheme', function () { return check.Check('docs.example.test'); });
attempt('empty', function () { return check.Check(''); });
attempt('null', function () { return check.Check(null); });
attempt('undefined', function () { return check.Check(undefined); });
attempt('a number', function () { return check.Check(5); });
attempt('the name in another case', function () { return check.cHECK('http://docs.example.test/'); });
WScript.Echo('end of probe_answers');
WScript.Quit(0);
