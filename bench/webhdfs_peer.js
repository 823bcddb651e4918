// The npm client `webhdfs`, for hdfs_ratios to measure beside: gets a file, or puts one.
//   NODE_PATH=.../node_modules node webhdfs_peer.js get|put PORT REMOTE LOCAL
const fs = require('fs');
const [what, port, remote, local] = process.argv.slice(2);
// The user whom the server takes a request without a name for, as curl's is.
const client = require('webhdfs').createClient({ user: 'dr.who', host: 'localhost', port: Number(port), path: '/webhdfs/v1' });
const fail = (error) => {
  console.error(error);
  process.exit(1);
};

if (what === 'get') {
  const file = fs.createWriteStream(local);
  client.createReadStream(remote).on('error', fail).pipe(file);
  file.on('finish', () => process.exit(0)).on('error', fail);
} else {
  const file = fs.createReadStream(local);
  file.on('error', fail).pipe(client.createWriteStream(remote).on('error', fail).on('finish', () => process.exit(0)));
}
