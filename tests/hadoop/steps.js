// steps.js PROGID BASE-URL USER STEP...: does things with one HDFS client, one after the other, and tells what came of each.
//
// A step is its name and values with "|" between them. Each prints a line of JSON in ASCII: the step's name, then either
// "value" or "error" (the number as eight hexadecimal digits) and "description"; "http" and "message" are those of the
// client's ConnectionError after the step.
var args = WScript.Arguments;
var client = new ActiveXObject(args(0));

function quoted(text) {
  var out = '"';
  for (var i = 0; i < text.length; i++) {
    var code = text.charCodeAt(i);
    if (code < 32 || code > 126 || code === 34 || code === 92) {
      out += '\\u' + ('000' + code.toString(16)).slice(-4);
    } else {
      out += text.charAt(i);
    }
  }
  return out + '"';
}

function json(value) {
  if (typeof value === 'string') return quoted(value);
  return value === undefined || value === null ? 'null' : String(value);
}

// Each sets Op itself where it needs one, since other steps leave theirs behind.
var steps = {
  'set': function (name, value) { client[name] = value; },
  'number': function (name, value) { client[name] = Number(value); },
  'get': function (name) { return client[name]; },
  'verify': function (url, user) { return client.VerifyServer(url, user); },
  'verify unnamed': function (url) { return client.VerifyServer(url); },
  'upload': function (path, local, overwrite, permission) {
    client.HdfsPath = path;
    client.Upload(local, overwrite !== 'false', permission || '');
  },
  'upload plainly': function (path, local) {
    client.HdfsPath = path;
    client.Upload(local);
  },
  'download': function (path, local) {
    client.HdfsPath = path;
    client.Op = 'OPEN';
    return client.Download(false, local);
  },
  'download again': function (local) { return client.Download(false, local); },
  'download to a random name': function (path) {
    client.HdfsPath = path;
    client.Op = 'OPEN';
    return client.Download(true);
  },
  'preview': function (path, lines) {
    client.HdfsPath = path;
    client.Op = 'OPEN';
    return client.DownloadPreview(Number(lines));
  },
  'text': function (path, op) {
    client.HdfsPath = path;
    client.Op = op || 'OPEN';
    return client.GetText();
  },
  // A stream tells no length, so this shows what the interface makes of one.
  'stream to': function (path, target) {
    client.HdfsPath = path;
    client.Op = 'OPEN';
    var stream = client.Stream();
    client.HdfsPath = target;
    client.Upload(stream);
  },
  'delete': function (path, recursive) {
    client.HdfsPath = path;
    return client.Delete(recursive === 'true');
  },
  'rename': function (path, name) {
    client.HdfsPath = path;
    return client.Rename(name);
  },
  'folder': function (path, permission) {
    client.HdfsPath = path;
    return client.CreateFolder(permission || '');
  }
};

client.BaseUrl = args(1);
client.UserName = args(2);
for (var i = 3; i < args.length; i++) {
  var words = args(i).split('|');
  var line = '"step": ' + quoted(words[0]);
  try {
    line += ', "value": ' + json(steps[words[0]].apply(null, words.slice(1)));
  } catch (error) {
    var number = error.number < 0 ? error.number + 0x100000000 : error.number;
    line += ', "error": "' + number.toString(16) + '", "description": ' + quoted(String(error.description));
  }
  var connection = client.ConnectionError;
  if (connection) line += ', "http": ' + connection.HttpCode + ', "message": ' + quoted(connection.Message);
  WScript.Echo('{' + line + '}');
}
WScript.Echo('end of steps');
