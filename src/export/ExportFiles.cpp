#include "export/ExportFiles.h"

namespace halvane::exporting {

namespace {
const QString SetupNote =
    QStringLiteral("the free game (Debian 12's ioquake3-server and openarena-server)");

QString shellWord(const QString& word) {
    static const QString Safe = QStringLiteral("+-_./=:,@%");
    bool plain = !word.isEmpty();
    for (const QChar c : word)
        plain = plain && c.unicode() < 128 && (c.isLetterOrNumber() || Safe.contains(c));
    if (plain)
        return word;
    QString quoted = word;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

// systemd splits ExecStart= itself: blanks separate, double quotes group,
// backslashes escape, and % and $ are its own specifiers.
QString unitWord(const QString& word) {
    QString escaped = word;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    escaped.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    escaped.replace(QLatin1Char('%'), QStringLiteral("%%"));
    escaped.replace(QLatin1Char('$'), QStringLiteral("$$"));
    const bool plain = !word.isEmpty() && !word.contains(QLatin1Char(' ')) &&
                       !word.contains(QLatin1Char('\t')) && !word.contains(QLatin1Char('\''));
    return plain ? escaped : QLatin1Char('"') + escaped + QLatin1Char('"');
}

// Double-quoted JSON strings, which YAML reads the same.
QString jsonString(const QString& text) {
    QString out = QStringLiteral("\"");
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '"':
            out += QStringLiteral("\\\"");
            break;
        case '\\':
            out += QStringLiteral("\\\\");
            break;
        default:
            if (c.unicode() < 0x20)
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            else
                out += c;
        }
    }
    return out + QLatin1Char('"');
}

QString jsonArray(const QStringList& words) {
    QStringList quoted;
    for (const QString& word : words)
        quoted.append(jsonString(word));
    return QLatin1Char('[') + quoted.join(QStringLiteral(", ")) + QLatin1Char(']');
}

// A ConfigMap key cannot hold a slash: srvmaps/mapset0.cfg is srvmaps-mapset0.cfg.
QString mapKey(const QString& path) {
    QString key = path;
    key.replace(QLatin1Char('/'), QLatin1Char('-'));
    return key;
}

QString port(const ExportInput& input) {
    return QString::number(input.port);
}

QByteArray text(const QString& content) {
    return content.toUtf8();
}
} // namespace

QString slug(const QString& name) {
    QString out;
    for (const QChar c : name.toLower()) {
        if (c.unicode() < 128 && c.isLetterOrNumber())
            out += c;
        else if (!out.isEmpty() && !out.endsWith(QLatin1Char('-')))
            out += QLatin1Char('-');
    }
    out.truncate(24);
    while (out.endsWith(QLatin1Char('-')))
        out.chop(1);
    return out.isEmpty() ? QStringLiteral("server") : out;
}

QString hostFolder(const QString& name) {
    return QStringLiteral("/srv/halvane-") + slug(name);
}

QStringList withoutPassword(const QStringList& arguments, QString* password) {
    QStringList out;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i].compare(QLatin1String("+set"), Qt::CaseInsensitive) == 0 &&
            i + 1 < arguments.size() &&
            arguments[i + 1].compare(QLatin1String("g_password"), Qt::CaseInsensitive) == 0) {
            // An empty password leaves no word of its own.
            const bool hasValue =
                i + 2 < arguments.size() && !arguments[i + 2].startsWith(QLatin1Char('+'));
            if (password)
                *password = hasValue ? arguments[i + 2] : QString();
            i += hasValue ? 2 : 1;
            continue;
        }
        out.append(arguments[i]);
    }
    return out;
}

QStringList serverArguments(const ExportInput& input, const QString& home, bool withAddress) {
    QStringList args{QStringLiteral("+set"),
                     QStringLiteral("com_basegame"),
                     QStringLiteral("baseoa"),
                     QStringLiteral("+set"),
                     QStringLiteral("fs_game"),
                     QStringLiteral("baseq3"),
                     QStringLiteral("+set"),
                     QStringLiteral("fs_basepath"),
                     FreeGameFolder,
                     QStringLiteral("+set"),
                     QStringLiteral("fs_homepath"),
                     home,
                     QStringLiteral("+set"),
                     QStringLiteral("com_legacyprotocol"),
                     QStringLiteral("71"),
                     QStringLiteral("+set"),
                     QStringLiteral("com_protocol"),
                     QStringLiteral("71"),
                     QStringLiteral("+set"),
                     QStringLiteral("vm_game"),
                     QStringLiteral("0")};
    for (qsizetype i = 0; i < input.gameArguments.size(); ++i) {
        if (!withAddress && i + 2 < input.gameArguments.size() &&
            input.gameArguments[i].compare(QLatin1String("+set"), Qt::CaseInsensitive) == 0 &&
            input.gameArguments[i + 1].compare(QLatin1String("net_ip"), Qt::CaseInsensitive) == 0) {
            i += 2;
            continue;
        }
        args.append(input.gameArguments[i]);
    }
    // After halvane.cfg, which sets the console password empty.
    args << QStringLiteral("+exec") << PasswordFile;
    return args;
}

QByteArray runScript(const ExportInput& input) {
    QString script =
        QStringLiteral(
            "#!/bin/sh\n"
            "# Starts halvane-%1 with %2,\n"
            "# on the scripts in this folder's baseq3, where the game writes its files.\n"
            "here=$(dirname \"$(readlink -f \"$0\")\")\n"
            "exec %3")
            .arg(slug(input.name), SetupNote, shellWord(input.engine));
    const QStringList args = serverArguments(input, QStringLiteral("\x01"), true);
    for (const QString& arg : args) {
        if (arg.startsWith(QLatin1Char('+')))
            script += QStringLiteral(" \\\n    ");
        else
            script += QLatin1Char(' ');
        script += arg == QStringLiteral("\x01") ? QStringLiteral("\"$here\"") : shellWord(arg);
    }
    return text(script + QLatin1Char('\n'));
}

QByteArray systemdUnit(const ExportInput& input) {
    const QString name = slug(input.name);
    const QString folder = hostFolder(input.name);
    QStringList exec{unitWord(input.engine)};
    for (const QString& arg : serverArguments(input, folder, true))
        exec.append(unitWord(arg));
    return text(QStringLiteral(
                    "# halvane-%1 as a system service. Copy the folder to %2,\n"
                    "# owned by the user halvane-%1; its passwords stay in baseq3/passwords.cfg,\n"
                    "# readable by that user alone. See README.md.\n"
                    "[Unit]\n"
                    "Description=Halvane game server halvane-%1\n"
                    "Documentation=file:%2/README.md\n"
                    "Wants=network-online.target\n"
                    "After=network-online.target\n"
                    "\n"
                    "[Service]\n"
                    "Type=exec\n"
                    "User=halvane-%1\n"
                    "Group=halvane-%1\n"
                    "WorkingDirectory=%2\n"
                    "ExecStart=%3\n"
                    "Restart=on-failure\n"
                    "RestartSec=5\n"
                    "UMask=0077\n"
                    "NoNewPrivileges=yes\n"
                    "ProtectSystem=strict\n"
                    "ProtectHome=yes\n"
                    "PrivateTmp=yes\n"
                    "PrivateDevices=yes\n"
                    "ProtectKernelTunables=yes\n"
                    "ProtectKernelModules=yes\n"
                    "ProtectControlGroups=yes\n"
                    "RestrictAddressFamilies=AF_INET AF_INET6 AF_UNIX\n"
                    "ReadWritePaths=%2\n"
                    "\n"
                    "[Install]\n"
                    "WantedBy=multi-user.target\n")
                    .arg(name, folder, exec.join(QLatin1Char(' '))));
}

QByteArray containerfile(const ExportInput& input) {
    const QStringList command =
        QStringList{input.engine} + serverArguments(input, ContainerHome, false);
    return text(
        QStringLiteral("# halvane-%1 in a container: Debian 12 with %2.\n"
                       "# The passwords are not part of the image: compose.yaml mounts\n"
                       "# baseq3/passwords.cfg (see .dockerignore).\n"
                       "FROM docker.io/library/debian:12-slim\n"
                       "RUN apt-get update \\\n"
                       " && apt-get install -y --no-install-recommends ioquake3-server "
                       "openarena-server \\\n"
                       " && rm -rf /var/lib/apt/lists/*\n"
                       "COPY baseq3/ %3/baseq3/\n"
                       "EXPOSE %4/udp\n"
                       "ENTRYPOINT %5\n")
            .arg(slug(input.name), SetupNote, ContainerHome, port(input), jsonArray(command)));
}

QByteArray containerIgnore() {
    return text(QStringLiteral("baseq3/") + PasswordFile + QLatin1Char('\n'));
}

QByteArray compose(const ExportInput& input) {
    const QString name = slug(input.name);
    return text(QStringLiteral("# halvane-%1: podman compose up -d (or docker compose up -d).\n"
                               "services:\n"
                               "  halvane-%1:\n"
                               "    build: .\n"
                               "    image: localhost/halvane-%1:latest\n"
                               "    restart: on-failure\n"
                               "    ports:\n"
                               "      - \"%2:%2/udp\"\n"
                               "    volumes:\n"
                               "      - ./baseq3/%3:%4/baseq3/%3:ro\n")
                    .arg(name, port(input), PasswordFile, ContainerHome));
}

QByteArray kubernetes(const ExportInput& input) {
    const QString name = QStringLiteral("halvane-") + slug(input.name);
    QString scripts;
    QString items;
    for (auto it = input.scripts.cbegin(); it != input.scripts.cend(); ++it) {
        scripts +=
            QStringLiteral("  %1: %2\n")
                .arg(jsonString(mapKey(it.key())), QString::fromLatin1(it.value().toBase64()));
        items += QStringLiteral("                    - key: %1\n"
                                "                      path: %2\n")
                     .arg(jsonString(mapKey(it.key())), jsonString(it.key()));
    }
    const QStringList args = serverArguments(input, ContainerHome, false);
    QString argLines;
    for (const QString& arg : args)
        argLines += QStringLiteral("            - ") + jsonString(arg) + QLatin1Char('\n');
    return text(
        QStringLiteral("# %1 on Kubernetes: kubectl apply -f kubernetes.yaml\n"
                       "# The image is the one the Containerfile builds; push it where the\n"
                       "# cluster finds it and name it below.\n"
                       "apiVersion: v1\n"
                       "kind: ConfigMap\n"
                       "metadata:\n"
                       "  name: %1-scripts\n"
                       "  labels:\n"
                       "    app.kubernetes.io/name: %1\n"
                       "binaryData:\n"
                       "%2"
                       "---\n"
                       "apiVersion: v1\n"
                       "kind: Secret\n"
                       "metadata:\n"
                       "  name: %1-passwords\n"
                       "  labels:\n"
                       "    app.kubernetes.io/name: %1\n"
                       "type: Opaque\n"
                       "data:\n"
                       "  %3: %4\n"
                       "---\n"
                       "apiVersion: apps/v1\n"
                       "kind: Deployment\n"
                       "metadata:\n"
                       "  name: %1\n"
                       "  labels:\n"
                       "    app.kubernetes.io/name: %1\n"
                       "spec:\n"
                       "  replicas: 1\n"
                       "  strategy:\n"
                       "    type: Recreate\n"
                       "  selector:\n"
                       "    matchLabels:\n"
                       "      app.kubernetes.io/name: %1\n"
                       "  template:\n"
                       "    metadata:\n"
                       "      labels:\n"
                       "        app.kubernetes.io/name: %1\n"
                       "    spec:\n"
                       "      containers:\n"
                       "        - name: server\n"
                       "          image: localhost/%1:latest\n"
                       "          imagePullPolicy: IfNotPresent\n"
                       "          command:\n"
                       "            - %5\n"
                       "          args:\n"
                       "%6"
                       "          ports:\n"
                       "            - name: game\n"
                       "              containerPort: %7\n"
                       "              protocol: UDP\n"
                       "          securityContext:\n"
                       "            allowPrivilegeEscalation: false\n"
                       "            capabilities:\n"
                       "              drop:\n"
                       "                - ALL\n"
                       "          volumeMounts:\n"
                       "            - name: scripts\n"
                       "              mountPath: %8/baseq3\n"
                       "              readOnly: true\n"
                       "      volumes:\n"
                       "        - name: scripts\n"
                       "          projected:\n"
                       "            defaultMode: 256\n" // 0400: the passwords are among them
                       "            sources:\n"
                       "              - configMap:\n"
                       "                  name: %1-scripts\n"
                       "                  items:\n"
                       "%9"
                       "              - secret:\n"
                       "                  name: %1-passwords\n"
                       "---\n"
                       "apiVersion: v1\n"
                       "kind: Service\n"
                       "metadata:\n"
                       "  name: %1\n"
                       "  labels:\n"
                       "    app.kubernetes.io/name: %1\n"
                       "spec:\n"
                       "  type: LoadBalancer\n"
                       "  selector:\n"
                       "    app.kubernetes.io/name: %1\n"
                       "  ports:\n"
                       "    - name: game\n"
                       "      protocol: UDP\n"
                       "      port: %7\n"
                       "      targetPort: %7\n")
            .arg(name, scripts, PasswordFile, QString::fromLatin1(input.passwords.toBase64()),
                 jsonString(input.engine), argLines, port(input), ContainerHome, items));
}

QByteArray readme(const ExportInput& input) {
    const QString name = slug(input.name);
    return text(
        QStringLiteral(
            "# The Halvane server halvane-%1\n"
            "\n"
            "This folder runs the server halvane-%1 on a Linux host with %2, or in a\n"
            "container, or on Kubernetes. `baseq3/` holds its scripts as Halvane wrote\n"
            "them. The game listens on UDP port %3.\n"
            "\n"
            "## Passwords\n"
            "\n"
            "The console (rcon) password and the server password are only in\n"
            "`baseq3/%4`, readable by its owner alone; `halvane.cfg` sets the console\n"
            "password empty and the server reads `%4` after it. The unit, the\n"
            "container image and the Kubernetes ConfigMap hold no password: compose mounts\n"
            "the file, Kubernetes reads it from the Secret `halvane-%1-passwords`.\n"
            "Keep the file's mode at 0600 when you copy the folder (`cp -a`).\n"
            "\n"
            "## On this host\n"
            "\n"
            "    sudo apt install ioquake3-server openarena-server\n"
            "    ./run-server.sh\n"
            "\n"
            "## As a system service (systemd)\n"
            "\n"
            "    sudo useradd --system --home-dir %5 --shell /usr/sbin/nologin halvane-%1\n"
            "    sudo cp -a . %5\n"
            "    sudo chown -R halvane-%1:halvane-%1 %5\n"
            "    sudo cp halvane-%1.service /etc/systemd/system/\n"
            "    sudo systemctl daemon-reload\n"
            "    sudo systemctl enable --now halvane-%1.service\n"
            "\n"
            "The service runs as that user, restarts when the game fails, and may write\n"
            "only to %5. `journalctl -u halvane-%1` shows its output.\n"
            "\n"
            "## In a container\n"
            "\n"
            "    podman compose up -d        # or: docker compose up -d\n"
            "\n"
            "builds the image from `Containerfile` (Debian 12 with the free game and the\n"
            "scripts) and publishes UDP port %3. The game's address box (net_ip) is\n"
            "left out here: it names an address of the host, not of the container.\n"
            "\n"
            "## On Kubernetes\n"
            "\n"
            "Build the image (`podman build -t localhost/halvane-%1:latest .`), push it\n"
            "where your cluster pulls from and set `image:` in `kubernetes.yaml`, then\n"
            "\n"
            "    kubectl apply -f kubernetes.yaml\n"
            "\n"
            "It makes a ConfigMap with the scripts, a Secret with `%4`, a Deployment of\n"
            "one replica (replaced, never doubled, on a change) running the same command\n"
            "line, and a UDP Service of type LoadBalancer on port %3. The scripts are\n"
            "mounted read-only: the game's own files (its log) are not kept; its output\n"
            "is in `kubectl logs deployment/halvane-%1`.\n")
            .arg(name, SetupNote, port(input), PasswordFile, hostFolder(input.name)));
}

QList<ExportFile> exportFiles(const ExportInput& input) {
    QList<ExportFile> files;
    for (auto it = input.scripts.cbegin(); it != input.scripts.cend(); ++it)
        files.append({QStringLiteral("baseq3/") + it.key(), it.value(), false, false});
    files.append({QStringLiteral("baseq3/") + PasswordFile, input.passwords, false, true});
    files.append({QStringLiteral("run-server.sh"), runScript(input), true, false});
    files.append({QStringLiteral("halvane-") + slug(input.name) + QStringLiteral(".service"),
                  systemdUnit(input), false, false});
    files.append({QStringLiteral("Containerfile"), containerfile(input), false, false});
    files.append({QStringLiteral(".dockerignore"), containerIgnore(), false, false});
    files.append({QStringLiteral("compose.yaml"), compose(input), false, false});
    files.append({QStringLiteral("kubernetes.yaml"), kubernetes(input), false, false});
    files.append({QStringLiteral("README.md"), readme(input), false, false});
    return files;
}

} // namespace halvane::exporting
