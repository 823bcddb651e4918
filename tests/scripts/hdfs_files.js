// args: {base} {folder}
// Both HDFS clients' methods on files and folders, with what the server makes of them.
function attempt(name, action) {
  var line;
  try {
    var value = action();
    line = value === undefined ? 'done' : typeof value + ' ' + value;
  } catch (error) {
    line = 'error ' + (error.number + 4294967296).toString(16) + ' [' + error.description + ']';
  }
  line = line.split(folder).join('FOLDER').replace(/\r/g, '\\r').replace(/\n/g, '\\n');
  WScript.Echo('  ' + name + ': ' + line);
}

function told(client) {
  WScript.Echo('    Op ' + client.Op + ', ' + client.ConnectionError.HttpCode + ' [' +
               client.ConnectionError.Message + ']');
}

// What the server holds, asked by an object of its own so that nothing of the other one's shows.
function text(path, op) {
  var reader = new ActiveXObject('Velantrica.HdfsClient');
  reader.BaseUrl = base;
  reader.UserName = 'bob';
  reader.HdfsPath = path;
  reader.Op = op;
  return reader.GetText();
}

function content(path) {
  return escape(text(path, 'OPEN'));
}

function names(path) {
  return text(path, 'LISTSTATUS').match(/"(pathSuffix|permission|length)":"?[^",]*/g).join(' ');
}

function folders(client, root) {
  client.HdfsPath = root + '/a b';
  attempt('CreateFolder', function () { return client.CreateFolder(); });
  told(client);
  attempt('CreateFolder with permissions', function () { return client.CreateFolder('750'); });
  told(client);
  attempt('CreateFolder with bad permissions', function () { return client.CreateFolder('999'); });
}

function uploads(client, root) {
  client.HdfsPath = root + '/a b/f-1.txt';
  attempt('Upload', function () { return client.Upload(folder + '/source.txt', true, '640'); });
  told(client);
  attempt('what is there', function () { return content(client.HdfsPath); });
  attempt('Upload of what is there', function () { return client.Upload(folder + '/source.txt', false); });
  attempt('Upload with bad permissions', function () { return client.Upload(folder + '/source.txt', true, '8'); });
  attempt('Upload of nothing', function () { return client.Upload(); });
  attempt('Upload of a number', function () { return client.Upload(7); });
  attempt('Upload of an object', function () { return client.Upload(client); });
}

function bodies(client, root) {
  client.HdfsPath = root + '/a b/f-1.txt';
  client.Op = 'OPEN';
  attempt('GetText', function () { return escape(client.GetText()); });
  told(client);
  attempt('Download', function () { return client.Download(false, folder + '/copy.txt'); });
  attempt('Download of a random name', function () { return typeof client.Download(true); });
  attempt('Download of both', function () { return client.Download(true, folder + '/copy.txt'); });
  attempt('Download without a name', function () {
    var path = client.HdfsPath;
    client.HdfsPath = root + '/';
    try {
      return client.Download();
    } finally {
      client.HdfsPath = path;
    }
  });
  attempt('DownloadPreview', function () { preview = client.DownloadPreview(2); return typeof preview; });
  told(client);
  client.HdfsPath = root + '/copies/preview.txt';
  attempt('Upload of the preview', function () { return client.Upload(preview); });
  attempt('what is there', function () { return content(client.HdfsPath); });
  client.HdfsPath = root + '/copies/copy.txt';
  attempt('Upload of the copy', function () { return client.Upload(folder + '/copy.txt'); });
  attempt('what is there', function () { return content(client.HdfsPath); });
}

function streams(client, root) {
  client.HdfsPath = root + '/a b/f-1.txt';
  client.Op = 'OPEN';
  attempt('Stream', function () { client.Stream(); });
  told(client);
}

// Such a stream does not tell its length, so it is announced as empty.
function uploadStream(client, source, copy) {
  attempt('Upload of a stream to ' + copy, function () {
    client.HdfsPath = source;
    var stream = client.Stream();
    client.HdfsPath = copy;
    return client.Upload(stream);
  });
}

function changes(client, root) {
  client.HdfsPath = root + '/a b/f-1.txt';
  attempt('Rename', function () { return client.Rename(root + '/a b/new.txt'); });
  told(client);
  attempt('Rename of what is gone', function () { return client.Rename(root + '/a b/newer.txt'); });
  client.HdfsPath = root + '/a b';
  attempt('what is there', function () { return names(client.HdfsPath); });
  attempt('Delete', function () { return client.Delete(); });
  told(client);
  attempt('Delete with all in it', function () { return client.Delete(true); });
  told(client);
  attempt('Delete once more', function () { return client.Delete(true); });
}

function missing(client, root) {
  client.HdfsPath = root + '/none';
  client.Op = 'OPEN';
  attempt('GetText', function () { return client.GetText(); });
  told(client);
  attempt('Download', function () { return client.Download(false, folder + '/none.txt'); });
  told(client);
  attempt('DownloadPreview', function () { return typeof client.DownloadPreview(); });
  attempt('Stream', function () { client.Stream(); });
  client.Op = 'NOSUCHOP';
  attempt('an operation that is none', function () { return client.GetText(); });
}

// The words for it are the network library's own in the first class.
function unreachable(client, root) {
  client.BaseUrl = 'http://localhost:1';
  client.HdfsPath = root + '/f.txt';
  attempt('GetText without a server', function () {
    try {
      return client.GetText();
    } catch (error) {
      return error.description.length > 0 && error.description === client.ConnectionError.Message;
    }
  });
  attempt('its status', function () { return client.ConnectionError.HttpCode; });
  attempt('Download without a server', function () {
    try {
      return client.Download(false, folder + '/nothing.txt');
    } catch (error) {
      return error.number === -2147467259 && error.description.length > 0;
    }
  });
  attempt('Upload of what was not downloaded', function () {
    try {
      return client.Upload(folder + '/nothing.txt');
    } catch (error) {
      return error.number;
    }
  });
}

var base = WScript.Arguments(0), folder = WScript.Arguments(1), preview;
var classes = ['Velantrica.HdfsClient', 'Velantrica.HdfsWinHttpClient.1'];
var parts = [folders, uploads, bodies, streams, changes, missing, unreachable];

function create(name) {
  var client = new ActiveXObject(name);
  client.BaseUrl = base;
  client.UserName = 'bob';
  return client;
}

for (var i = 0; i < classes.length; ++i) {
  WScript.Echo(classes[i]);
  for (var k = 0; k < parts.length; ++k) parts[k](create(classes[i]), '/user/bob/' + i);
}
for (i = 0; i < classes.length; ++i) {
  var copy = '/user/bob/' + i + '/copies/stream.txt';
  uploadStream(create(classes[i]), '/user/bob/' + i + '/copies/copy.txt', copy);
  // The second class may end its connection before the server has made the file. So this is the
  // last request, and nothing asks for the file. That it is empty shows in the request's body.
  if (i === 0) attempt('what is there', function () { return content(copy); });
}
WScript.Echo('end of hdfs_files');
WScript.Quit(0);
