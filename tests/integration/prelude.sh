# What the shell commands of integration tests share. Workspace.cpp sets the variables in capital letters.
PATH=$PROGRAMS:$PATH
module=$LIBRARIES/libSECM_AccessControl.so.0
docs=$SAMPLE/../../docs

# The options for the sample: the configuration, the database and a repository.
sample='-c archive.toml -s sqlite3://db=security.db -r documents'

# Make a database of SQL files, and print its connection text.
Sqlite() { # NAME FILE...
    name=$1
    shift
    cat "$@" | sqlite3 -bail "$name.db" && echo "sqlite3://db=$PWD/$name.db"
}
PostgreSql() { shared_server database "$@"; } # NAME FILE...

# Runs SQL on a database that PostgreSql made: a statement, or standard input.
sql() { shared_server sql "$@"; } # NAME [STATEMENT]

# Tests share the server. The name of the scratch folder keeps their databases apart.
shared_server() { # COMMAND NAME ARGUMENT...
    command=$1 name=${PWD##*/}-$2
    shift 2
    server "$command" "$POSTGRESQL_SERVER" "$name" "$@"
}

# Starts and breaks servers of a test's own; the commands are those of scripts/postgresql.
server() { "$POSTGRESQL" "$@"; } # COMMAND FOLDER ARGUMENT...

# Equal lines that follow each other, and how many there are.
counted() { uniq -c | sed 's/^ *//'; }

# Runs a command that prints JSON, and shows each object within a list on a line of its own.
folded() { # COMMAND ARGUMENT...
    status=0
    "$@" >.folded || status=$?
    sed 's/,{/,\n    {/g' .folded
    rm .folded
    return $status
}

# Runs a check with a security database without the list of users who see everything or nothing.
findings() { # COMMAND ARGUMENT...
    status=0
    "$@" >.findings || status=$?
    sed -E '/^([0-9]+ errors?, |no findings)/q' .findings
    rm .findings
    return $status
}

# Hides what differs between servers in connection texts.
any_server() { sed -E "s/(passfile|port)=[^ ']*/\1=.../g; s/, port [0-9]+, process [0-9]+/, port ..., process .../"; }

# Ends a block that this machine or this build cannot show. Its test passes, and says so.
not_here() { exit 99; }
