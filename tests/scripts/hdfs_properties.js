// args: {base}
// Both HDFS clients' properties, and the questions that need no file.
function attempt(name, action) {
  var line;
  try {
    var value = action();
    line = value === undefined ? 'done' : typeof value + ' ' + value;
  } catch (error) {
    line = 'error ' + (error.number + 4294967296).toString(16) + ' [' + error.description + ']';
  }
  WScript.Echo('  ' + name + ': ' + line.split(base).join('BASE'));
}

function properties(client) {
  attempt('Port', function () { return client.Port; });
  attempt('ServerName', function () { return client.ServerName; });
  attempt('HdfsPath', function () { return client.HdfsPath; });
  attempt('BaseUrl', function () { return client.BaseUrl; });
  attempt('UserName', function () { return client.UserName; });
  attempt('Secure', function () { return client.Secure; });
  attempt('URL', function () { return client.URL; });
  attempt('Op', function () { return client.Op; });
  attempt('Options', function () { return client.Options; });
}

function setting(client) {
  attempt('Port is a number', function () { client.Port = 65535; return client.Port; });
  attempt('Port is a text', function () { client.Port = '8020'; return client.Port; });
  attempt('Port is too large', function () { client.Port = 65536; return client.Port; });
  attempt('Port is no number', function () { client.Port = 'many'; });
  attempt('ServerName is set', function () { client.ServerName = 'h\u00f6st'; return escape(client.ServerName); });
  attempt('HdfsPath is set', function () { client.HdfsPath = '/u/a b-c/\u00e9'; return escape(client.HdfsPath); });
  attempt('UserName is set', function () { client.UserName = 'bob'; return client.UserName; });
  attempt('Secure is set', function () { client.Secure = true; return client.Secure; });
  attempt('Op is set', function () { client.Op = 'LISTSTATUS'; return client.Op; });
  attempt('Options are set', function () { client.Options = -7; return client.Options; });
  attempt('URL shows them', function () { return escape(client.URL); });
  attempt('URL is set', function () { client.URL = 'http://h'; });
  attempt('ConnectionError is set', function () { client.ConnectionError = null; });
  attempt('BaseUrl is https', function () { client.BaseUrl = 'https://nn/x'; return client.BaseUrl + ' ' + client.Port; });
  attempt('BaseUrl has a port', function () { client.BaseUrl = 'http://nn:8020'; return client.BaseUrl; });
  attempt('BaseUrl has port 80', function () { client.BaseUrl = 'http://nn:80'; return client.BaseUrl; });
  attempt('BaseUrl is ftp', function () { client.BaseUrl = 'ftp://other'; });
  attempt('BaseUrl behind that', function () { return client.BaseUrl; });
  attempt('BaseUrl has a query', function () { client.BaseUrl = 'http://third:8/?q'; });
  attempt('BaseUrl behind that', function () { return client.BaseUrl; });
  attempt('an unknown member', function () { return client.Request('http://h'); });
}

function verifying(client) {
  attempt('no error yet', function () { return client.ConnectionError; });
  client.BaseUrl = base;
  client.UserName = 'ann';
  client.Op = 'GETHOMEDIRECTORY';
  attempt('a server with a user', function () { return client.VerifyServer(base, 'bob'); });
  attempt('its status', function () { return client.ConnectionError.HttpCode; });
  attempt('its message', function () { return client.ConnectionError.Message; });
  attempt('UserName behind it', function () { return client.UserName; });
  attempt('a server without a user', function () { return client.VerifyServer(base); });
  attempt('a user who is a number', function () { return client.VerifyServer(base, 7); });
  attempt('a user who is undefined', function () { return client.VerifyServer(base, undefined); });
  attempt('no URL', function () { return client.VerifyServer(); });
  attempt('a page that is no answer', function () {
    client.Op = 'LISTSTATUS';
    return client.VerifyServer(base, 'bob');
  });
  attempt('Op behind it', function () { return client.Op; });
  attempt('a URL that is none', function () { return client.VerifyServer('nowhere', 'bob'); });
  attempt('BaseUrl behind it', function () { return client.BaseUrl; });
}

var base = WScript.Arguments(0);
var classes = ['Velantrica.HdfsClient', 'Velantrica.HdfsWinHttpClient.1'];
for (var i = 0; i < classes.length; ++i) {
  WScript.Echo(classes[i]);
  var client = new ActiveXObject(classes[i]);
  properties(client);
  setting(client);
  verifying(new ActiveXObject(classes[i]));
}
WScript.Echo('end of hdfs_properties');
WScript.Quit(0);
