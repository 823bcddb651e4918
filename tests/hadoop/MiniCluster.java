// A real HDFS on loopback for the lane `hadoop`: Hadoop's own name node and data nodes in one process, asked and disturbed
// through lines of JSON.
//
//   MiniCluster FOLDER MAX-SECONDS
//
// The first line on standard output tells version and ports; after it each line of standard input is a command and is
// answered by one line. The process ends by "stop", by the end of its input, and in any case after MAX-SECONDS, so that a
// test that dies leaves nothing behind. FOLDER is emptied by Hadoop and holds the nodes' files.
//
// The commands speak to HDFS over its own protocol, not over WebHDFS: what they tell is independent of what is tested.

import com.fasterxml.jackson.core.json.JsonWriteFeature;
import com.fasterxml.jackson.databind.JsonNode;
import com.fasterxml.jackson.databind.ObjectMapper;
import com.fasterxml.jackson.databind.node.ArrayNode;
import com.fasterxml.jackson.databind.node.ObjectNode;
import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.security.MessageDigest;
import java.util.HexFormat;
import org.apache.hadoop.conf.Configuration;
import org.apache.hadoop.fs.FileStatus;
import org.apache.hadoop.fs.Path;
import org.apache.hadoop.fs.SafeModeAction;
import org.apache.hadoop.fs.permission.FsPermission;
import org.apache.hadoop.hdfs.DFSConfigKeys;
import org.apache.hadoop.hdfs.DistributedFileSystem;
import org.apache.hadoop.hdfs.MiniDFSCluster;
import org.apache.hadoop.hdfs.MiniDFSCluster.DataNodeProperties;
import org.apache.hadoop.hdfs.server.datanode.DataNode;
import org.apache.hadoop.util.VersionInfo;

public final class MiniCluster {
  private static final int DATA_NODES = 2;
  private static final ObjectMapper JSON = new ObjectMapper();

  private final MiniDFSCluster cluster;
  private final DistributedFileSystem files;
  // By number; a stopped one leaves its slot empty, so that the others keep theirs.
  private final DataNode[] dataNodes = new DataNode[DATA_NODES];
  private final DataNodeProperties[] stopped = new DataNodeProperties[DATA_NODES];

  public static void main(String[] arguments) throws Exception {
    // What Hadoop prints must not come between the answers.
    PrintStream answers = System.out;
    System.setOut(System.err);
    endAfter(Long.parseLong(arguments[1]));
    MiniCluster self = new MiniCluster(arguments[0]);
    say(answers, self.ports());
    BufferedReader commands =
        new BufferedReader(new InputStreamReader(System.in, StandardCharsets.UTF_8));
    for (String line = commands.readLine(); line != null; line = commands.readLine()) {
      JsonNode command = JSON.readTree(line);
      if (command.get("do").asText().equals("stop")) break;
      say(answers, self.answer(command));
    }
    self.cluster.shutdown(true);
    System.exit(0);
  }

  private MiniCluster(String folder) throws Exception {
    Configuration settings = new Configuration();
    settings.set(MiniDFSCluster.HDFS_MINIDFS_BASEDIR, folder);
    settings.set(DFSConfigKeys.DFS_HTTP_POLICY_KEY, "HTTP_AND_HTTPS");
    settings.set(DFSConfigKeys.DFS_NAMENODE_HTTPS_ADDRESS_KEY, "localhost:0");
    settings.set(DFSConfigKeys.DFS_DATANODE_HTTPS_ADDRESS_KEY, "localhost:0");
    // The name by which redirects call the data nodes.
    settings.set(DFSConfigKeys.DFS_DATANODE_HOST_NAME_KEY, "localhost");
    // A file on both nodes, so that it outlives one of them.
    settings.setInt(DFSConfigKeys.DFS_REPLICATION_KEY, DATA_NODES);
    settings.set(DFSConfigKeys.DFS_PERMISSIONS_SUPERUSERGROUP_KEY, "supergroup");
    cluster = new MiniDFSCluster.Builder(settings)
                  .numDataNodes(DATA_NODES)
                  .checkDataNodeHostConfig(true)
                  .build();
    cluster.waitActive();
    files = cluster.getFileSystem();
    for (int i = 0; i < DATA_NODES; i++) dataNodes[i] = cluster.getDataNodes().get(i);
    // The superuser is whoever runs this; what the tests do, they do as an ordinary user.
    Path home = new Path("/user/bob");
    files.mkdirs(home);
    files.setOwner(home, "bob", "users");
  }

  private ObjectNode ports() throws IOException {
    ObjectNode told = JSON.createObjectNode();
    told.put("version", VersionInfo.getVersion());
    told.put("java", System.getProperty("java.version"));
    told.put("http", cluster.getNameNode().getHttpAddress().getPort());
    told.put("https", cluster.getNameNode().getHttpsAddress().getPort());
    ArrayNode nodes = told.putArray("dataNodes");
    for (DataNode node : dataNodes) {
      ObjectNode one = nodes.addObject();
      one.put("host", node.getDatanodeHostname());
      one.put("http", node.getInfoPort());
      one.put("https", node.getInfoSecurePort());
    }
    return told;
  }

  private ObjectNode answer(JsonNode command) {
    ObjectNode told = JSON.createObjectNode();
    try {
      run(command, told);
    } catch (Exception failure) {
      told.removeAll();
      told.put("error", failure.toString());
    }
    return told;
  }

  private void run(JsonNode command, ObjectNode told) throws Exception {
    switch (command.get("do").asText()) {
      case "status" -> tellStatus(path(command), told);
      case "holders" -> tellHolders(path(command), told);
      case "list" -> {
        ArrayNode names = told.putArray("names");
        for (FileStatus entry : files.listStatus(path(command))) names.add(entry.getPath().getName());
      }
      // A file of BYTES bytes, byte i being i modulo 251, owned by bob, on so many nodes.
      case "make" ->
          make(path(command), command.get("bytes").asLong(), command.path("copies").asInt(DATA_NODES));
      case "delete" -> told.put("deleted", files.delete(path(command), true));
      case "folder" -> {
        files.mkdirs(path(command));
        files.setOwner(path(command), "bob", "users");
      }
      case "permission" ->
          files.setPermission(path(command), new FsPermission(command.get("mode").asText()));
      case "safe mode" -> told.put(
          "on",
          files.setSafeMode(command.get("on").asBoolean() ? SafeModeAction.ENTER : SafeModeAction.LEAVE));
      // Bytes a second that a data node reads from its disk for others; 0 for all it can.
      case "throttle" -> {
        for (DataNode node : dataNodes) {
          if (node != null) {
            node.reconfigureProperty(DFSConfigKeys.DFS_DATANODE_DATA_READ_BANDWIDTHPERSEC_KEY,
                                     command.get("bytes").asText());
          }
        }
      }
      case "kill" -> kill(command.get("node").asInt());
      case "revive" -> revive(command.get("node").asInt());
      default -> throw new IllegalArgumentException("unknown command");
    }
  }

  private void tellStatus(Path path, ObjectNode told) throws Exception {
    FileStatus status = files.getFileStatus(path);
    told.put("folder", status.isDirectory());
    told.put("length", status.getLen());
    told.put("owner", status.getOwner());
    told.put("permission", String.format("%03o", status.getPermission().toShort()));
    if (status.isDirectory()) return;
    told.put("sha256", sha256(path));
  }

  /** The numbers of the data nodes that hold the file's first block. */
  private void tellHolders(Path path, ObjectNode told) throws IOException {
    ArrayNode numbers = told.putArray("nodes");
    for (String name : files.getFileBlockLocations(path, 0, 1)[0].getNames()) {
      for (int i = 0; i < DATA_NODES; i++) {
        if (dataNodes[i] != null && dataNodes[i].getDatanodeId().getXferAddr().equals(name)) numbers.add(i);
      }
    }
  }

  private String sha256(Path path) throws Exception {
    MessageDigest digest = MessageDigest.getInstance("SHA-256");
    byte[] piece = new byte[1 << 16];
    try (InputStream stream = files.open(path)) {
      for (int read = stream.read(piece); read >= 0; read = stream.read(piece)) digest.update(piece, 0, read);
    }
    return HexFormat.of().formatHex(digest.digest());
  }

  private void make(Path path, long bytes, int copies) throws IOException {
    byte[] pattern = new byte[251 * 256];
    for (int i = 0; i < pattern.length; i++) pattern[i] = (byte) (i % 251);
    try (var stream = files.create(path, (short) copies)) {
      for (long left = bytes; left > 0; left -= pattern.length) {
        stream.write(pattern, 0, (int) Math.min(left, pattern.length));
      }
    }
    files.setOwner(path, "bob", "users");
  }

  /** Stops a data node and has the name node know it at once, not after its heartbeats are missed. */
  private void kill(int number) throws IOException {
    DataNode node = dataNodes[number];
    if (node == null) throw new IllegalArgumentException("that data node is stopped already");
    var id = node.getDatanodeId();
    stopped[number] = cluster.stopDataNode(id.getXferAddr());
    dataNodes[number] = null;
    cluster.setDataNodeDead(id);
  }

  /** Starts a stopped data node with the files that it had; its ports are others then. */
  private void revive(int number) throws IOException {
    if (dataNodes[number] != null) throw new IllegalArgumentException("that data node runs");
    cluster.restartDataNode(stopped[number]);
    cluster.waitActive();
    // The cluster puts it behind the others.
    dataNodes[number] = cluster.getDataNodes().get(DATA_NODES - 1);
  }

  private static Path path(JsonNode command) {
    // Not Path(String): that would read the colon of a name as the end of a scheme.
    return new Path(null, null, command.get("path").asText());
  }

  private static void say(PrintStream answers, ObjectNode told) throws IOException {
    // ASCII alone, whatever the locale.
    answers.println(
        JSON.writer().with(JsonWriteFeature.ESCAPE_NON_ASCII).writeValueAsString(told));
    answers.flush();
  }

  private static void endAfter(long seconds) {
    Thread watch = new Thread(() -> {
      try {
        Thread.sleep(seconds * 1000);
      } catch (InterruptedException interrupted) {
        return;
      }
      System.err.println("MiniCluster: ends after " + seconds + " s");
      Runtime.getRuntime().halt(3);
    });
    watch.setDaemon(true);
    watch.start();
  }
}
