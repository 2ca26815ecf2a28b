# Completes marvelode-timer in fish by what its --help says.
# Each line of --help that begins with a dash is an option; after it stand its values between bars, or in capitals what
# only the user knows.
complete --command marvelode-timer --no-files
marvelode-timer --help 2>/dev/null | while read option value description
    switch $option
        case '--*'
            set kind --long-option
        case '-*'
            set kind --old-option
        case '*'
            continue
    end
    set kind --command marvelode-timer $kind (string trim --left --chars=- -- $option)
    switch $value
        case '*|*'
            complete $kind --exclusive --arguments (string replace --all '|' ' ' $value) --description $description
        case '*'
            if string match --quiet --regex '^[[:upper:]]' $value
                complete $kind --exclusive --description $description
            else
                complete $kind --description "$value $description"
            end
    end
end
